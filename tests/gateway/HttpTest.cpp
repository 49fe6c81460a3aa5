#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/http/Guard.h"
#include "gateway/http/LiveFeed.h"
#include "gateway/watch/Converter.h"
#include "support/ScratchFolder.h"

namespace harvlink::gateway {
namespace {

using words::Json;

/// A table with one controller, without a network.
class HttpTest : public testing::Test {
protected:
    HttpTest() {
        std::vector<FleetGroup> const groups{{.items = {FleetItem::Register(3, 2)}}};
        Controller controller;
        controller.id = 1;
        controller.name = "press";
        controller.readings = ReadingsOf(groups);
        controller.periods = PeriodsOf(groups);
        press_ = std::make_shared<Controller const>(controller);
        table_.Added(press_);
    }

    void Put(std::uint32_t reading, std::int64_t value,
             recording::RecordedQuality quality = recording::RecordedQuality::Good) {
        std::vector<SamplePtr> const samples{std::make_shared<Sample const>(
            Sample{press_, reading, {.quality = quality, .answer = 5'000'000}, {value}})};
        table_.Take({samples, {}});
    }

    Api MakeApi() {
        ApiSources sources;
        sources.gateway = "hall";
        sources.table = &table_;
        sources.statistics = [] { return FleetStatistics(); };
        sources.plan = [] { return FleetPlan(); };
        sources.roundTrips = [] { return LastRoundTrips(); };
        sources.figures = [] { return std::vector<Figure>(); };
        return Api(sources);
    }

    LatestTable table_;
    ControllerPtr press_;
};

TEST_F(HttpTest, AnswersOrSaysWhyNot) {
    Api const api = MakeApi();
    struct Case {
        char const* method;
        char const* path;
        char const* query;
        int status;
        char const* part; ///< of the body
    };
    for (Case const& each : std::vector<Case>{
             {"GET", "/api/controllers", "", 200, "\"name\":\"press\",\"host\":\"\""},
             {"GET", "/api/v1/controllers/press", "", 200, "\"id\":2,\"name\":\"register 4\",\"kind\":\"number\""},
             {"GET", "/api/latest", "", 200, "{\"press\":[[1,0,null,\"never\"],[2,0,null,\"never\"]]}"},
             {"GET", "/api/controllers/other", "", 404, "there is no controller 'other'"},
             {"GET", "/api/controllers/press/geometry", "", 404, "lengths of this arm"},
             {"GET", "/api/history", "controller=press", 409, "no [recording]"},
             {"GET", "/api/incidents/../x", "", 409, "recording.incidents"},
             {"GET", "/api/incidents", "", 200, "[]"},
             {"GET", "/api/events", "limit=x", 400, "limit must be a whole number"},
             {"GET", "/api/cards/4107", "", 200, "\"code\":4107"},
             {"GET", "/api/cards/x", "", 400, "error"},
             {"GET", "/api/nothing", "", 404, "no such path"},
             {"GET", "/metrics", "", 404, "switched off"},
             {"GET", "/health/live", "", 200, "live"},
             {"GET", "/health/ready", "", 503, "starting"},
             {"PUT", "/api/controllers/press", "", 405, "only reads"},
             {"POST", "/api/controllers/press", "", 405, "only reads"},
             {"POST", "/api/virtual/press", "", 404, "only the virtual controllers"}}) {
        Request request;
        request.method = each.method;
        request.path = each.path;
        request.query = ParseQuery(each.query);
        Response const response = api.Answer(request);
        EXPECT_EQ(response.status, each.status) << each.path;
        EXPECT_NE(response.body.find(each.part), std::string::npos) << each.path << ": " << response.body;
    }
    EXPECT_EQ(ParseQuery("a=%41+b&c&d=%zz&=x").at("a"), "A b");
    EXPECT_EQ(ParseQuery("d=%zz").at("d"), "%zz");
}

TEST_F(HttpTest, NamesADownloadInAnyLetters) {
    test::ScratchFolder const folder;
    std::string const file = "pr\"e ü-20261122T191217Z-alarm-4107.harvlink";
    std::ofstream(folder.Path() / file) << "recording";
    ApiSources sources = MakeApi().Sources();
    sources.incidents = folder.Path();
    Request request;
    request.path = "/api/incidents/" + file;
    Response const response = Api(sources).Answer(request);
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(response.headers.at(0).second, "attachment; filename=\"pr_e___-20261122T191217Z-alarm-4107.harvlink\"; "
                                             "filename*=UTF-8''pr%22e%20%C3%BC-20261122T191217Z-alarm-4107.harvlink");
}

TEST_F(HttpTest, AnswersOnlyThoseItShould) {
    test::ScratchFolder const folder;
    std::ofstream(folder.Path() / "token") << "0123456789abcdef\n";
    ListenConfig const local;
    ListenConfig open;
    open.address = "0.0.0.0";
    open.hosts = {"Hall.plant:80"};
    ListenConfig guarded = local;
    guarded.tokenFile = folder.Path() / "token";
    struct Case {
        ListenConfig const* config;
        char const* host;
        char const* origin;
        char const* authorization;
        bool isWebSocket;
        int status; ///< 0: answered
    };
    for (Case const& each :
         std::vector<Case>{{&local, "127.0.0.1:9750", "", "", false, 0},
                           {&local, "LOCALHOST:9750", "", "", false, 0},
                           {&local, "[::1]:9750", "", "", false, 0},
                           {&local, "evil.example", "", "", false, 421},
                           {&local, "", "", "", false, 421},
                           {&local, "localhost:9750", "http://localhost:9750", "", true, 0},
                           {&local, "localhost:9750", "http://evil.example", "", true, 403},
                           {&local, "localhost:9750", "null", "", true, 403},
                           {&open, "10.0.0.7:9750", "", "", false, 0},
                           {&open, "hall.plant:9750", "", "", false, 0},
                           {&open, "localhost:9750", "", "", false, 0},
                           {&open, "evil.example:9750", "", "", false, 421},
                           {&guarded, "localhost", "", "", false, 401},
                           {&guarded, "localhost", "", "Bearer 0123456789abcdeX", false, 401},
                           {&guarded, "localhost", "", "bearer 0123456789abcdef", false, 0},
                           {&guarded, "localhost", "", "Bearer ", false, 401},
                           // As a browser sends what its user types: page:0123456789abcdef, and without name.
                           {&guarded, "localhost", "", "Basic cGFnZTowMTIzNDU2Nzg5YWJjZGVm", false, 0},
                           {&guarded, "localhost", "", "Basic MDEyMzQ1Njc4OWFiY2RlZg==", false, 401},
                           {&guarded, "localhost", "", "Basic !", false, 401}}) {
        Request request;
        request.host = each.host;
        request.origin = each.origin;
        request.authorization = each.authorization;
        auto const refused = Guard(*each.config).Refuse(request, each.isWebSocket);
        EXPECT_EQ(refused ? refused->status : 0, each.status) << each.host << ' ' << each.origin;
    }
}

TEST_F(HttpTest, SendsAClientTheLatestAndNothingOld) {
    Api const api = MakeApi();
    LiveFeed feed(api);
    LiveClient client(feed);
    auto const next = [&] {
        LiveText const text = client.Next();
        return text == nullptr ? Json() : Json::parse(*text);
    };
    Put(0, 7);
    feed.Look();
    EXPECT_EQ(next()["type"], "hello");
    client.Receive("{\"watch\":[\"press\",\"nobody\"]}");
    Json const items = next();
    EXPECT_EQ(items["type"], "items");
    EXPECT_EQ(items["values"].dump(), "[[1,5000,7,\"good\"],[2,0,null,\"never\"]]");
    EXPECT_TRUE(next().is_null());

    // It takes nothing for a while: of the values between, it gets the last.
    for (std::int64_t value = 8; value < 12; ++value) {
        Put(0, value);
        std::vector<Event> const events{
            {press_, FleetEventKind::ServoOn, {.kind = "servo-on", .text = "", .card = ""}}};
        table_.Take({{}, events});
        client.Tick(feed.Look());
    }
    EXPECT_EQ(next()["type"], "hello") << "it missed deltas, so it gets the full picture";
    EXPECT_EQ(next()["values"].dump(), "[[1,5000,11,\"good\"]]");
    Put(0, 11);
    client.Tick(feed.Look());
    for (Json message = next(); !message.is_null(); message = next()) {
        EXPECT_NE(message["type"], "values") << "a value that did not change is not sent again";
    }
    Put(0, 11, recording::RecordedQuality::Stale);
    client.Tick(nullptr);
    feed.Look();
    EXPECT_EQ(next()["values"].dump(), "[[1,5000,null,\"stale\"]]");

    client.Receive("{\"pause\":true}");
    Put(0, 12);
    EXPECT_FALSE(client.Tick(feed.Look()));
    EXPECT_TRUE(next().is_null());
    client.Receive("{\"pause\":false}");
    EXPECT_EQ(next()["type"], "hello");
    for (char const* const wrong : {"", "[]", "{\"watch\":3}", "{\"watch\":[1]}", "{\"pause\":1}"}) {
        client.Receive(wrong);
        EXPECT_EQ(next()["type"], "error") << wrong;
    }
}

} // namespace
} // namespace harvlink::gateway
