-- A recording of version 1 of the schema, as the first programs wrote it. Never change it: it must stay readable.
PRAGMA application_id = 1213615179;
PRAGMA user_version = 1;
CREATE TABLE blocks(
    id INTEGER PRIMARY KEY, controller INTEGER NOT NULL REFERENCES controllers(id), width INTEGER NOT NULL);
INSERT INTO "blocks" VALUES(1,1,128);
CREATE TABLE controllers(
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, address TEXT NOT NULL);
INSERT INTO "controllers" VALUES(1,'press1','192.168.255.11');
CREATE TABLE events(
    sequence INTEGER PRIMARY KEY, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
    controller INTEGER NOT NULL REFERENCES controllers(id), kind TEXT NOT NULL, before INTEGER NOT NULL,
    after INTEGER NOT NULL, code INTEGER NOT NULL, text TEXT NOT NULL, card TEXT NOT NULL);
INSERT INTO "events" VALUES(1,1795341581638370,0,1,'online',0,1,0,'','');
INSERT INTO "events" VALUES(3,1795341582839035,1200666,1,'alarm-raised',0,0,0,'','');
INSERT INTO "events" VALUES(5,1795341582854293,1215924,1,'alarm-raised',0,4107,0,'OUT OF RANGE','Something went wrong while the machine worked: a job, a limit, a device. harvlink alarms shows its text; remove the cause, then harvlink alarms clear.');
CREATE TABLE frames_128(sequence INTEGER PRIMARY KEY, block INTEGER NOT NULL, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
round_trip_us INTEGER NOT NULL, picture INTEGER NOT NULL, reading INTEGER, quality INTEGER NOT NULL, code INTEGER NOT NULL, v0, v1, v2, v3,
v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14, v15, v16, v17, v18, v19, v20, v21, v22, v23, v24, v25, v26, v27, v28, v29, v30, v31, v32,
v33, v34, v35, v36, v37, v38, v39, v40, v41, v42, v43, v44, v45, v46, v47, v48, v49, v50, v51, v52, v53, v54, v55, v56, v57, v58, v59, v60,
v61, v62, v63, v64, v65, v66, v67, v68, v69, v70, v71, v72, v73, v74, v75, v76, v77, v78, v79, v80, v81, v82, v83, v84, v85, v86, v87, v88,
v89, v90, v91, v92, v93, v94, v95, v96, v97, v98, v99, v100, v101, v102, v103, v104, v105, v106, v107, v108, v109, v110, v111, v112, v113,
v114, v115, v116, v117, v118, v119, v120, v121, v122, v123, v124, v125, v126, v127, t0, t1, t2, t3, t4, t5, t6, t7, t8, t9, t10, t11, t12,
t13, t14, t15, t16, t17, t18, t19, t20, t21, t22, t23, t24, t25, t26, t27, t28, t29, t30, t31, t32, t33, t34, t35, t36, t37, t38, t39, t40,
t41, t42, t43, t44, t45, t46, t47, t48, t49, t50, t51, t52, t53, t54, t55, t56, t57, t58, t59, t60, t61, t62, t63, t64, t65, t66, t67, t68,
t69, t70, t71, t72, t73, t74, t75, t76, t77, t78, t79, t80, t81, t82, t83, t84, t85, t86, t87, t88, t89, t90, t91, t92, t93, t94, t95, t96,
t97, t98, t99, t100, t101, t102, t103, t104, t105, t106, t107, t108, t109, t110, t111, t112, t113, t114, t115, t116, t117, t118, t119,
t120, t121, t122, t123, t124, t125, t126, t127);
INSERT INTO "frames_128" VALUES(2,1,1795341581638370,70,69,0,NULL,0,0,2,1,0,0,0,0,0,'',0,0,10000,790000,0,1050000,1800000,0,0,0,0,16,0,0,
0,0,0,0,0,0,0,0,0,X'5072EA74',7,0.5,0,0,0,'','',0,0,'','',0,0,'','',0,0,'','','YAS4.10.00A(EN/JP)-00','HV012-1440-A00',NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,72351858,
NULL,NULL,NULL,192938053,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,265289787,NULL,NULL,NULL,NULL,NULL,NULL,NULL,328204341,
384827443,438304826,662700089,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,1142947890,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL);
INSERT INTO "frames_128" VALUES(4,1,1795341582838831,1200667,204,0,NULL,0,0,NULL,NULL,NULL,NULL,1,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,9,NULL,1,4107,3,'2026/11/22 09:59',
'OUT OF RANGE',NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,450887729,NULL,16070475912,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,
NULL,NULL,NULL,NULL,NULL,NULL);
CREATE TABLE frames_32(sequence INTEGER PRIMARY KEY, block INTEGER NOT NULL, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
round_trip_us INTEGER NOT NULL, picture INTEGER NOT NULL, reading INTEGER, quality INTEGER NOT NULL, code INTEGER NOT NULL, v0, v1, v2, v3,
v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14, v15, v16, v17, v18, v19, v20, v21, v22, v23, v24, v25, v26, v27, v28, v29, v30, v31, t0,
t1, t2, t3, t4, t5, t6, t7, t8, t9, t10, t11, t12, t13, t14, t15, t16, t17, t18, t19, t20, t21, t22, t23, t24, t25, t26, t27, t28, t29,
t30, t31);
CREATE TABLE frames_8(sequence INTEGER PRIMARY KEY, block INTEGER NOT NULL, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
round_trip_us INTEGER NOT NULL, picture INTEGER NOT NULL, reading INTEGER, quality INTEGER NOT NULL, code INTEGER NOT NULL, v0, v1, v2, v3,
v4, v5, v6, v7, t0, t1, t2, t3, t4, t5, t6, t7);
CREATE TABLE gaps(
    sequence INTEGER PRIMARY KEY, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
    duration_us INTEGER NOT NULL, count INTEGER NOT NULL, reason TEXT NOT NULL);
CREATE TABLE items(
    id INTEGER PRIMARY KEY, reading INTEGER NOT NULL REFERENCES readings(id), name TEXT NOT NULL,
    field TEXT NOT NULL, kind TEXT NOT NULL, unit TEXT NOT NULL, type INTEGER NOT NULL, divisor INTEGER NOT NULL,
    block INTEGER NOT NULL, slot INTEGER NOT NULL, reading_slot INTEGER NOT NULL, UNIQUE(block, slot));
INSERT INTO "items" VALUES(1,1,'state.mode','mode','state','',0,1,1,0,0);
INSERT INTO "items" VALUES(2,1,'state.cycle','cycle','state','',0,1,1,1,0);
INSERT INTO "items" VALUES(3,1,'state.running','running','state','',3,1,1,2,0);
INSERT INTO "items" VALUES(4,1,'state.hold','hold','state','',3,1,1,3,0);
INSERT INTO "items" VALUES(5,1,'state.alarm','alarm','state','',3,1,1,4,0);
INSERT INTO "items" VALUES(6,1,'state.error','error','state','',3,1,1,5,0);
INSERT INTO "items" VALUES(7,1,'state.servo','servo','state','',3,1,1,6,0);
INSERT INTO "items" VALUES(8,2,'job 0.name','name','job','',2,1,1,7,7);
INSERT INTO "items" VALUES(9,2,'job 0.line','line','job','',0,1,1,8,7);
INSERT INTO "items" VALUES(10,2,'job 0.step','step','job','',0,1,1,9,7);
INSERT INTO "items" VALUES(11,2,'job 0.speed','speed','job','%',1,100,1,10,7);
INSERT INTO "items" VALUES(12,3,'position R1 base.x','x','position','mm',1,1000,1,11,11);
INSERT INTO "items" VALUES(13,3,'position R1 base.y','y','position','mm',1,1000,1,12,11);
INSERT INTO "items" VALUES(14,3,'position R1 base.z','z','position','mm',1,1000,1,13,11);
INSERT INTO "items" VALUES(15,3,'position R1 base.rx','rx','position','deg',1,10000,1,14,11);
INSERT INTO "items" VALUES(16,3,'position R1 base.ry','ry','position','deg',1,10000,1,15,11);
INSERT INTO "items" VALUES(17,3,'position R1 base.rz','rz','position','deg',1,10000,1,16,11);
INSERT INTO "items" VALUES(18,3,'position R1 base.re','re','position','deg',1,10000,1,17,11);
INSERT INTO "items" VALUES(19,3,'position R1 base.rw','rw','position','deg',1,10000,1,18,11);
INSERT INTO "items" VALUES(20,3,'position R1 base.coordinate','coordinate','position','',0,1,1,19,11);
INSERT INTO "items" VALUES(21,3,'position R1 base.tool','tool','position','',0,1,1,20,11);
INSERT INTO "items" VALUES(22,3,'position R1 base.user','user','position','',0,1,1,21,11);
INSERT INTO "items" VALUES(23,3,'position R1 base.figure','figure','position','',0,1,1,22,11);
INSERT INTO "items" VALUES(24,4,'torque R1.s','s','torque','',0,1,1,23,23);
INSERT INTO "items" VALUES(25,4,'torque R1.l','l','torque','',0,1,1,24,23);
INSERT INTO "items" VALUES(26,4,'torque R1.u','u','torque','',0,1,1,25,23);
INSERT INTO "items" VALUES(27,4,'torque R1.r','r','torque','',0,1,1,26,23);
INSERT INTO "items" VALUES(28,4,'torque R1.b','b','torque','',0,1,1,27,23);
INSERT INTO "items" VALUES(29,4,'torque R1.t','t','torque','',0,1,1,28,23);
INSERT INTO "items" VALUES(30,4,'torque R1.e','e','torque','',0,1,1,29,23);
INSERT INTO "items" VALUES(31,4,'torque R1.w','w','torque','',0,1,1,30,23);
INSERT INTO "items" VALUES(32,5,'S004','','string-variable','',2,1,1,31,31);
INSERT INTO "items" VALUES(33,6,'B000','','byte-variable','',0,1,1,32,32);
INSERT INTO "items" VALUES(34,7,'R001','','real-variable','',1,1,1,33,33);
INSERT INTO "items" VALUES(35,8,'alarms.count','count','alarms','',0,1,1,34,34);
INSERT INTO "items" VALUES(36,8,'alarms.code1','code1','alarms','',0,1,1,35,34);
INSERT INTO "items" VALUES(37,8,'alarms.subcode1','subcode1','alarms','',0,1,1,36,34);
INSERT INTO "items" VALUES(38,8,'alarms.time1','time1','alarms','',2,1,1,37,34);
INSERT INTO "items" VALUES(39,8,'alarms.name1','name1','alarms','',2,1,1,38,34);
INSERT INTO "items" VALUES(40,8,'alarms.code2','code2','alarms','',0,1,1,39,34);
INSERT INTO "items" VALUES(41,8,'alarms.subcode2','subcode2','alarms','',0,1,1,40,34);
INSERT INTO "items" VALUES(42,8,'alarms.time2','time2','alarms','',2,1,1,41,34);
INSERT INTO "items" VALUES(43,8,'alarms.name2','name2','alarms','',2,1,1,42,34);
INSERT INTO "items" VALUES(44,8,'alarms.code3','code3','alarms','',0,1,1,43,34);
INSERT INTO "items" VALUES(45,8,'alarms.subcode3','subcode3','alarms','',0,1,1,44,34);
INSERT INTO "items" VALUES(46,8,'alarms.time3','time3','alarms','',2,1,1,45,34);
INSERT INTO "items" VALUES(47,8,'alarms.name3','name3','alarms','',2,1,1,46,34);
INSERT INTO "items" VALUES(48,8,'alarms.code4','code4','alarms','',0,1,1,47,34);
INSERT INTO "items" VALUES(49,8,'alarms.subcode4','subcode4','alarms','',0,1,1,48,34);
INSERT INTO "items" VALUES(50,8,'alarms.time4','time4','alarms','',2,1,1,49,34);
INSERT INTO "items" VALUES(51,8,'alarms.name4','name4','alarms','',2,1,1,50,34);
INSERT INTO "items" VALUES(52,9,'software 11.version','version','software','',2,1,1,51,51);
INSERT INTO "items" VALUES(53,9,'software 11.model','model','software','',2,1,1,52,51);
CREATE TABLE readings(
    id INTEGER PRIMARY KEY, controller INTEGER NOT NULL REFERENCES controllers(id), name TEXT NOT NULL,
    kind TEXT NOT NULL, number INTEGER NOT NULL, control_group INTEGER NOT NULL, coordinate INTEGER NOT NULL,
    tool INTEGER NOT NULL, user_frame INTEGER NOT NULL, axis INTEGER NOT NULL, detail INTEGER NOT NULL,
    block INTEGER NOT NULL REFERENCES blocks(id), slot INTEGER NOT NULL, UNIQUE(controller, name));
INSERT INTO "readings" VALUES(1,1,'state','state',0,1,0,0,0,-1,0,1,0);
INSERT INTO "readings" VALUES(2,1,'job 0','job',0,1,0,0,0,-1,0,1,7);
INSERT INTO "readings" VALUES(3,1,'position R1 base','position',0,1,16,0,0,-1,0,1,11);
INSERT INTO "readings" VALUES(4,1,'torque R1','torque',0,1,0,0,0,-1,0,1,23);
INSERT INTO "readings" VALUES(5,1,'S004','string-variable',4,1,0,0,0,-1,0,1,31);
INSERT INTO "readings" VALUES(6,1,'B000','byte-variable',0,1,0,0,0,-1,0,1,32);
INSERT INTO "readings" VALUES(7,1,'R001','real-variable',1,1,0,0,0,-1,0,1,33);
INSERT INTO "readings" VALUES(8,1,'alarms','alarms',0,1,0,0,0,-1,0,1,34);
INSERT INTO "readings" VALUES(9,1,'software 11','software',11,1,0,0,0,-1,0,1,51);
CREATE TABLE segments(
    id INTEGER PRIMARY KEY, first_sequence INTEGER NOT NULL, last_sequence INTEGER NOT NULL,
    begin_us INTEGER NOT NULL, end_us INTEGER NOT NULL, begin_monotonic_us INTEGER NOT NULL,
    end_monotonic_us INTEGER NOT NULL, samples INTEGER NOT NULL, item_values INTEGER NOT NULL, events INTEGER NOT NULL,
    gaps INTEGER NOT NULL, missing INTEGER NOT NULL);
INSERT INTO "segments" VALUES(1,1,5,1795341581638370,1795341584039192,0,2400823,61,60,3,0,0);
CREATE INDEX items_of_reading ON items(reading);
CREATE VIEW item_values AS SELECT sequence, item, picture, quality, code, utc_us + coalesce(t >> 20, 0) AS request_us,
utc_us + coalesce(t >> 20, 0) + CASE WHEN t IS NULL THEN round_trip_us ELSE t & 1048575 END AS answer_us,
monotonic_us + (utc_us + coalesce(t >> 20, 0) - utc_us) + (CASE
WHEN t IS NULL THEN round_trip_us ELSE t & 1048575 END) - round_trip_us AS monotonic_us, CASE
WHEN type = 1 AND typeof(v) = 'integer' THEN v * 1.0 / divisor ELSE v END AS value FROM (SELECT f.sequence, f.utc_us, f.monotonic_us,
f.round_trip_us, f.picture, f.quality, f.code, i.id AS item, i.type, i.divisor, CASE i.slot WHEN 0 THEN f.v0 WHEN 1 THEN f.v1
WHEN 2 THEN f.v2 WHEN 3 THEN f.v3 WHEN 4 THEN f.v4 WHEN 5 THEN f.v5 WHEN 6 THEN f.v6 WHEN 7 THEN f.v7 END AS v, CASE i.reading_slot
WHEN 0 THEN f.t0 WHEN 1 THEN f.t1 WHEN 2 THEN f.t2 WHEN 3 THEN f.t3 WHEN 4 THEN f.t4 WHEN 5 THEN f.t5 WHEN 6 THEN f.t6
WHEN 7 THEN f.t7 END AS t FROM frames_8 AS f
JOIN items AS i ON i.block = f.block WHERE (f.reading IS NULL OR f.reading = i.reading) AND (v IS NOT NULL OR f.quality <> 0)
UNION ALL SELECT f.sequence, f.utc_us, f.monotonic_us, f.round_trip_us, f.picture, f.quality, f.code, i.id AS item, i.type, i.divisor,
CASE i.slot WHEN 0 THEN f.v0 WHEN 1 THEN f.v1 WHEN 2 THEN f.v2 WHEN 3 THEN f.v3 WHEN 4 THEN f.v4 WHEN 5 THEN f.v5 WHEN 6 THEN f.v6
WHEN 7 THEN f.v7 WHEN 8 THEN f.v8 WHEN 9 THEN f.v9 WHEN 10 THEN f.v10 WHEN 11 THEN f.v11 WHEN 12 THEN f.v12 WHEN 13 THEN f.v13
WHEN 14 THEN f.v14 WHEN 15 THEN f.v15 WHEN 16 THEN f.v16 WHEN 17 THEN f.v17 WHEN 18 THEN f.v18 WHEN 19 THEN f.v19 WHEN 20 THEN f.v20
WHEN 21 THEN f.v21 WHEN 22 THEN f.v22 WHEN 23 THEN f.v23 WHEN 24 THEN f.v24 WHEN 25 THEN f.v25 WHEN 26 THEN f.v26 WHEN 27 THEN f.v27
WHEN 28 THEN f.v28 WHEN 29 THEN f.v29 WHEN 30 THEN f.v30 WHEN 31 THEN f.v31 END AS v, CASE i.reading_slot WHEN 0 THEN f.t0
WHEN 1 THEN f.t1 WHEN 2 THEN f.t2 WHEN 3 THEN f.t3 WHEN 4 THEN f.t4 WHEN 5 THEN f.t5 WHEN 6 THEN f.t6 WHEN 7 THEN f.t7
WHEN 8 THEN f.t8 WHEN 9 THEN f.t9 WHEN 10 THEN f.t10 WHEN 11 THEN f.t11 WHEN 12 THEN f.t12 WHEN 13 THEN f.t13 WHEN 14 THEN f.t14
WHEN 15 THEN f.t15 WHEN 16 THEN f.t16 WHEN 17 THEN f.t17 WHEN 18 THEN f.t18 WHEN 19 THEN f.t19 WHEN 20 THEN f.t20 WHEN 21 THEN f.t21
WHEN 22 THEN f.t22 WHEN 23 THEN f.t23 WHEN 24 THEN f.t24 WHEN 25 THEN f.t25 WHEN 26 THEN f.t26 WHEN 27 THEN f.t27 WHEN 28 THEN f.t28
WHEN 29 THEN f.t29 WHEN 30 THEN f.t30 WHEN 31 THEN f.t31 END AS t FROM frames_32 AS f
JOIN items AS i ON i.block = f.block WHERE (f.reading IS NULL OR f.reading = i.reading) AND (v IS NOT NULL OR f.quality <> 0)
UNION ALL SELECT f.sequence, f.utc_us, f.monotonic_us, f.round_trip_us, f.picture, f.quality, f.code, i.id AS item, i.type, i.divisor,
CASE i.slot WHEN 0 THEN f.v0 WHEN 1 THEN f.v1 WHEN 2 THEN f.v2 WHEN 3 THEN f.v3 WHEN 4 THEN f.v4 WHEN 5 THEN f.v5 WHEN 6 THEN f.v6
WHEN 7 THEN f.v7 WHEN 8 THEN f.v8 WHEN 9 THEN f.v9 WHEN 10 THEN f.v10 WHEN 11 THEN f.v11 WHEN 12 THEN f.v12 WHEN 13 THEN f.v13
WHEN 14 THEN f.v14 WHEN 15 THEN f.v15 WHEN 16 THEN f.v16 WHEN 17 THEN f.v17 WHEN 18 THEN f.v18 WHEN 19 THEN f.v19 WHEN 20 THEN f.v20
WHEN 21 THEN f.v21 WHEN 22 THEN f.v22 WHEN 23 THEN f.v23 WHEN 24 THEN f.v24 WHEN 25 THEN f.v25 WHEN 26 THEN f.v26 WHEN 27 THEN f.v27
WHEN 28 THEN f.v28 WHEN 29 THEN f.v29 WHEN 30 THEN f.v30 WHEN 31 THEN f.v31 WHEN 32 THEN f.v32 WHEN 33 THEN f.v33 WHEN 34 THEN f.v34
WHEN 35 THEN f.v35 WHEN 36 THEN f.v36 WHEN 37 THEN f.v37 WHEN 38 THEN f.v38 WHEN 39 THEN f.v39 WHEN 40 THEN f.v40 WHEN 41 THEN f.v41
WHEN 42 THEN f.v42 WHEN 43 THEN f.v43 WHEN 44 THEN f.v44 WHEN 45 THEN f.v45 WHEN 46 THEN f.v46 WHEN 47 THEN f.v47 WHEN 48 THEN f.v48
WHEN 49 THEN f.v49 WHEN 50 THEN f.v50 WHEN 51 THEN f.v51 WHEN 52 THEN f.v52 WHEN 53 THEN f.v53 WHEN 54 THEN f.v54 WHEN 55 THEN f.v55
WHEN 56 THEN f.v56 WHEN 57 THEN f.v57 WHEN 58 THEN f.v58 WHEN 59 THEN f.v59 WHEN 60 THEN f.v60 WHEN 61 THEN f.v61 WHEN 62 THEN f.v62
WHEN 63 THEN f.v63 WHEN 64 THEN f.v64 WHEN 65 THEN f.v65 WHEN 66 THEN f.v66 WHEN 67 THEN f.v67 WHEN 68 THEN f.v68 WHEN 69 THEN f.v69
WHEN 70 THEN f.v70 WHEN 71 THEN f.v71 WHEN 72 THEN f.v72 WHEN 73 THEN f.v73 WHEN 74 THEN f.v74 WHEN 75 THEN f.v75 WHEN 76 THEN f.v76
WHEN 77 THEN f.v77 WHEN 78 THEN f.v78 WHEN 79 THEN f.v79 WHEN 80 THEN f.v80 WHEN 81 THEN f.v81 WHEN 82 THEN f.v82 WHEN 83 THEN f.v83
WHEN 84 THEN f.v84 WHEN 85 THEN f.v85 WHEN 86 THEN f.v86 WHEN 87 THEN f.v87 WHEN 88 THEN f.v88 WHEN 89 THEN f.v89 WHEN 90 THEN f.v90
WHEN 91 THEN f.v91 WHEN 92 THEN f.v92 WHEN 93 THEN f.v93 WHEN 94 THEN f.v94 WHEN 95 THEN f.v95 WHEN 96 THEN f.v96 WHEN 97 THEN f.v97
WHEN 98 THEN f.v98 WHEN 99 THEN f.v99 WHEN 100 THEN f.v100 WHEN 101 THEN f.v101 WHEN 102 THEN f.v102 WHEN 103 THEN f.v103
WHEN 104 THEN f.v104 WHEN 105 THEN f.v105 WHEN 106 THEN f.v106 WHEN 107 THEN f.v107 WHEN 108 THEN f.v108 WHEN 109 THEN f.v109
WHEN 110 THEN f.v110 WHEN 111 THEN f.v111 WHEN 112 THEN f.v112 WHEN 113 THEN f.v113 WHEN 114 THEN f.v114 WHEN 115 THEN f.v115
WHEN 116 THEN f.v116 WHEN 117 THEN f.v117 WHEN 118 THEN f.v118 WHEN 119 THEN f.v119 WHEN 120 THEN f.v120 WHEN 121 THEN f.v121
WHEN 122 THEN f.v122 WHEN 123 THEN f.v123 WHEN 124 THEN f.v124 WHEN 125 THEN f.v125 WHEN 126 THEN f.v126 WHEN 127 THEN f.v127 END AS v,
CASE i.reading_slot WHEN 0 THEN f.t0 WHEN 1 THEN f.t1 WHEN 2 THEN f.t2 WHEN 3 THEN f.t3 WHEN 4 THEN f.t4 WHEN 5 THEN f.t5
WHEN 6 THEN f.t6 WHEN 7 THEN f.t7 WHEN 8 THEN f.t8 WHEN 9 THEN f.t9 WHEN 10 THEN f.t10 WHEN 11 THEN f.t11 WHEN 12 THEN f.t12
WHEN 13 THEN f.t13 WHEN 14 THEN f.t14 WHEN 15 THEN f.t15 WHEN 16 THEN f.t16 WHEN 17 THEN f.t17 WHEN 18 THEN f.t18 WHEN 19 THEN f.t19
WHEN 20 THEN f.t20 WHEN 21 THEN f.t21 WHEN 22 THEN f.t22 WHEN 23 THEN f.t23 WHEN 24 THEN f.t24 WHEN 25 THEN f.t25 WHEN 26 THEN f.t26
WHEN 27 THEN f.t27 WHEN 28 THEN f.t28 WHEN 29 THEN f.t29 WHEN 30 THEN f.t30 WHEN 31 THEN f.t31 WHEN 32 THEN f.t32 WHEN 33 THEN f.t33
WHEN 34 THEN f.t34 WHEN 35 THEN f.t35 WHEN 36 THEN f.t36 WHEN 37 THEN f.t37 WHEN 38 THEN f.t38 WHEN 39 THEN f.t39 WHEN 40 THEN f.t40
WHEN 41 THEN f.t41 WHEN 42 THEN f.t42 WHEN 43 THEN f.t43 WHEN 44 THEN f.t44 WHEN 45 THEN f.t45 WHEN 46 THEN f.t46 WHEN 47 THEN f.t47
WHEN 48 THEN f.t48 WHEN 49 THEN f.t49 WHEN 50 THEN f.t50 WHEN 51 THEN f.t51 WHEN 52 THEN f.t52 WHEN 53 THEN f.t53 WHEN 54 THEN f.t54
WHEN 55 THEN f.t55 WHEN 56 THEN f.t56 WHEN 57 THEN f.t57 WHEN 58 THEN f.t58 WHEN 59 THEN f.t59 WHEN 60 THEN f.t60 WHEN 61 THEN f.t61
WHEN 62 THEN f.t62 WHEN 63 THEN f.t63 WHEN 64 THEN f.t64 WHEN 65 THEN f.t65 WHEN 66 THEN f.t66 WHEN 67 THEN f.t67 WHEN 68 THEN f.t68
WHEN 69 THEN f.t69 WHEN 70 THEN f.t70 WHEN 71 THEN f.t71 WHEN 72 THEN f.t72 WHEN 73 THEN f.t73 WHEN 74 THEN f.t74 WHEN 75 THEN f.t75
WHEN 76 THEN f.t76 WHEN 77 THEN f.t77 WHEN 78 THEN f.t78 WHEN 79 THEN f.t79 WHEN 80 THEN f.t80 WHEN 81 THEN f.t81 WHEN 82 THEN f.t82
WHEN 83 THEN f.t83 WHEN 84 THEN f.t84 WHEN 85 THEN f.t85 WHEN 86 THEN f.t86 WHEN 87 THEN f.t87 WHEN 88 THEN f.t88 WHEN 89 THEN f.t89
WHEN 90 THEN f.t90 WHEN 91 THEN f.t91 WHEN 92 THEN f.t92 WHEN 93 THEN f.t93 WHEN 94 THEN f.t94 WHEN 95 THEN f.t95 WHEN 96 THEN f.t96
WHEN 97 THEN f.t97 WHEN 98 THEN f.t98 WHEN 99 THEN f.t99 WHEN 100 THEN f.t100 WHEN 101 THEN f.t101 WHEN 102 THEN f.t102
WHEN 103 THEN f.t103 WHEN 104 THEN f.t104 WHEN 105 THEN f.t105 WHEN 106 THEN f.t106 WHEN 107 THEN f.t107 WHEN 108 THEN f.t108
WHEN 109 THEN f.t109 WHEN 110 THEN f.t110 WHEN 111 THEN f.t111 WHEN 112 THEN f.t112 WHEN 113 THEN f.t113 WHEN 114 THEN f.t114
WHEN 115 THEN f.t115 WHEN 116 THEN f.t116 WHEN 117 THEN f.t117 WHEN 118 THEN f.t118 WHEN 119 THEN f.t119 WHEN 120 THEN f.t120
WHEN 121 THEN f.t121 WHEN 122 THEN f.t122 WHEN 123 THEN f.t123 WHEN 124 THEN f.t124 WHEN 125 THEN f.t125 WHEN 126 THEN f.t126
WHEN 127 THEN f.t127 END AS t FROM frames_128 AS f
JOIN items AS i ON i.block = f.block WHERE (f.reading IS NULL OR f.reading = i.reading) AND (v IS NOT NULL OR f.quality <> 0));
CREATE VIEW samples AS SELECT s.sequence, c.name AS controller, i.name AS item, i.unit, i.kind, s.value, s.quality, s.code,
s.answer_us AS utc_us, s.monotonic_us, s.request_us, s.answer_us, s.picture, strftime('%Y-%m-%dT%H:%M:%S', s.answer_us / 1000000,
'unixepoch') || printf('.%06dZ', s.answer_us % 1000000) AS time FROM item_values AS s JOIN items AS i ON i.id = s.item
JOIN readings AS r ON r.id = i.reading JOIN controllers AS c ON c.id = r.controller;
CREATE VIEW history AS SELECT e.sequence, strftime('%Y-%m-%dT%H:%M:%S', e.utc_us / 1000000, 'unixepoch') || printf('.%06dZ',
e.utc_us % 1000000) AS time, e.utc_us, e.monotonic_us, c.name AS controller, e.kind, e.before, e.after, e.code, e.text, e.card
FROM events AS e JOIN controllers AS c ON c.id = e.controller UNION ALL SELECT sequence, strftime('%Y-%m-%dT%H:%M:%S', utc_us / 1000000,
'unixepoch') || printf('.%06dZ', utc_us % 1000000), utc_us, monotonic_us, '', 'gap', 0, count, 0, reason, duration_us || ' us' FROM gaps;
CREATE VIEW alarms AS SELECT * FROM history WHERE kind IN ('alarm-raised', 'alarm-cleared');
