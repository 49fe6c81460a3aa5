#include "binding/Binding.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace harvlink::test {

using namespace std::string_literals;

namespace {

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};
using OwnedText = std::unique_ptr<char, FreeText>;

/// A task with more or fewer jobs than that of an idle controller.
class StackedJobs final : public JobInterface {
public:
    explicit StackedJobs(std::vector<std::string> jobs) : jobs_(std::move(jobs)) {}

    StatusInfo SetActiveJob(std::string const&, unsigned) override { return {}; }
    StatusInfo GetExecutingJobInformation(TesselTaskNumber, JobData&) override { return {}; }
    StatusInfo GetJobStack(TesselTaskNumber, std::vector<std::string>& jobs) override {
        jobs = jobs_;
        return {-1, "as told"};
    }

private:
    std::vector<std::string> jobs_;
};

std::vector<std::string> PlainStack(std::vector<std::string> jobs) {
    StackedJobs stacked(std::move(jobs));
    struct : QuorvanController {
    } controller;
    controller.Job = &stacked;
    ControllerCell cell{&controller};
    IJobStack plain;
    IStatusInfo const status = job_interface_get_job_stack(&cell, 0, &plain);
    EXPECT_EQ(status.StatusCode, -1);
    EXPECT_STREQ(OwnedText(status.Message).get(), "as told");

    std::vector<std::string> texts;
    for (char* text : {plain.job0, plain.job1, plain.job2, plain.job3, plain.job4, plain.job5, plain.job6, plain.job7,
                       plain.job8, plain.job9, plain.job10, plain.job11}) {
        texts.emplace_back(OwnedText(text).get());
    }
    return texts;
}

} // namespace

TEST(InteropHelper, TextsCrossUpToTheirFirstZeroByte) {
    for (auto const& [text, expected] :
         std::vector<std::pair<std::string, std::string>>{{"", ""},
                                                          {"OK", "OK"},
                                                          {"2024/05/01\0\0\0"s, "2024/05/01"},
                                                          {"\0behind"s, ""},
                                                          {"\xe4\xff", "\xe4\xff"}}) {
        EXPECT_EQ(OwnedText(InteropHelper::ConvertStringToChar8(text)).get(), expected);
    }
}

TEST(InteropHelper, EachNameIsFollowedByALineFeed) {
    EXPECT_STREQ(OwnedText(InteropHelper::ConvertStringVectorToChar8({})).get(), "");
    EXPECT_STREQ(OwnedText(InteropHelper::ConvertStringVectorToChar8({"A.JBI", "B.JBI"})).get(), "A.JBI\nB.JBI\n");
}

TEST(InteropHelper, NullIsNotAText) {
    EXPECT_THROW(InteropHelper::ConvertChar8ToString(nullptr), std::logic_error);
}

TEST(JobBinding, PlacesWithoutAJobHoldNoneAndTheThirteenthJobIsLost) {
    std::vector<std::string> jobs;
    for (int count = 0; count <= 13; ++count) {
        std::vector<std::string> expected(jobs.begin(), jobs.begin() + std::min(count, 12));
        expected.resize(12, "none");
        EXPECT_EQ(PlainStack(jobs), expected) << count << " jobs";
        jobs.push_back("JOB" + std::to_string(count));
    }
}

TEST(JobBinding, NamesEndAtTheirPadding) {
    EXPECT_EQ(PlainStack({"MASTER"s + std::string(27, '\0')}).front(), "MASTER");
}

} // namespace harvlink::test
