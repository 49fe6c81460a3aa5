// A six-axis arm with a spherical wrist, drawn from its lengths. With all angles 0 the upper arm stands upright and the
// forearm points forward (X); Z is up. Loaded only by pages that show an arm.
import {
    AmbientLight,
    BoxGeometry,
    Color,
    CylinderGeometry,
    DirectionalLight,
    GridHelper,
    Group,
    Mesh,
    MeshStandardMaterial,
    PerspectiveCamera,
    Scene,
    Vector3,
    WebGLRenderer,
} from "three";
import type { ArmDrawing } from "./armView";
import type { Geometry } from "./model";

const radians = Math.PI / 180;
const width = 640;
const height = 480;

type Axis = "x" | "y" | "z";

/** The sign with which a positive angle turns about its axis here, where Z is up and X forward. */
const turns: { axis: Axis; sign: number }[] = [
    { axis: "z", sign: 1 }, // S: to the left
    { axis: "y", sign: 1 }, // L: leans forward
    { axis: "y", sign: -1 }, // U: lifts the forearm
    { axis: "x", sign: 1 }, // R: about the forearm's direction
    { axis: "y", sign: -1 }, // B: lifts the hand
    { axis: "x", sign: 1 }, // T: about the flange's normal
];

class Skeleton {
    readonly root = new Group();
    readonly joints: Group[] = [];
    private readonly metal = new MeshStandardMaterial({ color: 0xd97706, roughness: 0.6 });
    private readonly dark = new MeshStandardMaterial({ color: 0x475569, roughness: 0.7 });

    constructor(arm: Geometry) {
        this.root.add(this.box(260, 260, 60, 0, 0, 30));
        const turret = this.joint(this.root, 0, 0, 0);
        turret.add(this.rod(90, arm.shoulderHeight, "z"));
        turret.add(this.boxBetween(arm.shoulderOffset, arm.shoulderHeight));
        const upper = this.joint(turret, arm.shoulderOffset, 0, arm.shoulderHeight);
        upper.add(this.knuckle(75), this.rod(55, arm.upperArm, "z"));
        const elbow = this.joint(upper, 0, 0, arm.upperArm);
        elbow.add(this.knuckle(60), this.rod(45, arm.elbowOffset, "z"));
        const forearm = this.joint(elbow, 0, 0, arm.elbowOffset);
        forearm.add(this.rod(42, arm.forearm, "x"));
        const wrist = this.joint(forearm, arm.forearm, 0, 0);
        wrist.add(this.knuckle(40));
        const flange = this.joint(wrist, 0, 0, 0);
        flange.add(this.rod(30, arm.hand, "x"));
        flange.add(this.box(14, 70, 24, arm.hand, 0, 0));
    }

    pose(degrees: number[]): void {
        this.joints.forEach((joint, index) => {
            const { axis, sign } = turns[index]!;
            joint.rotation[axis] = sign * (degrees[index] ?? 0) * radians;
        });
    }

    private joint(parent: Group, x: number, y: number, z: number): Group {
        const joint = new Group();
        joint.position.set(x, y, z);
        parent.add(joint);
        this.joints.push(joint);
        return joint;
    }

    private rod(radius: number, length: number, along: "x" | "z"): Mesh {
        const rod = new Mesh(new CylinderGeometry(radius, radius, Math.abs(length) || 1, 24), this.metal);
        if (along === "x") {
            rod.rotation.z = Math.PI / 2;
            rod.position.x = length / 2;
        } else {
            rod.rotation.x = Math.PI / 2;
            rod.position.z = length / 2;
        }
        return rod;
    }

    private knuckle(radius: number): Mesh {
        return new Mesh(new CylinderGeometry(radius, radius, radius * 2.2, 24), this.dark);
    }

    private box(x: number, y: number, z: number, atX: number, atY: number, atZ: number): Mesh {
        const box = new Mesh(new BoxGeometry(x, y, z), this.dark);
        box.position.set(atX, atY, atZ);
        return box;
    }

    private boxBetween(offset: number, atZ: number): Mesh {
        return this.box(Math.abs(offset) + 120, 160, 130, offset / 2, 0, atZ);
    }
}

export function drawArm(geometry: Geometry, label: string): ArmDrawing {
    const renderer = new WebGLRenderer({ antialias: true, alpha: true });
    renderer.setSize(width, height, false);
    const canvas = renderer.domElement;
    canvas.setAttribute("role", "img");
    canvas.setAttribute("aria-label", label);
    canvas.className = "arm-canvas";

    const scene = new Scene();
    const reach = geometry.upperArm + geometry.forearm + geometry.hand + geometry.shoulderHeight;
    const floor = new GridHelper(reach * 2, 20, new Color(0x64748b), new Color(0x94a3b8));
    floor.rotation.x = Math.PI / 2;
    const light = new DirectionalLight(0xffffff, 2.2);
    light.position.set(reach, -reach, reach * 2);
    const skeleton = new Skeleton(geometry);
    scene.add(new AmbientLight(0xffffff, 1.1), light, floor, skeleton.root);

    const camera = new PerspectiveCamera(38, width / height, 10, reach * 10);
    camera.up.set(0, 0, 1);
    camera.position.set(reach * 1.1, -reach * 1.25, reach * 0.8);
    camera.lookAt(new Vector3(reach * 0.15, 0, reach * 0.3));

    return {
        canvas,
        pose(degrees) {
            skeleton.pose(degrees);
            canvas.dataset["pose"] = degrees.map((angle) => angle.toFixed(2)).join(" ");
            renderer.render(scene, camera);
        },
        close() {
            renderer.dispose();
            renderer.forceContextLoss();
        },
    };
}
