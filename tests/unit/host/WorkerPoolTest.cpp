#include "host/suite/WorkerPool.h"

#include "platform/Process.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace vant::host {

namespace {

WorkerSettings Settings(std::size_t count, std::chrono::milliseconds longest = std::chrono::minutes(1)) {
    SecureStandardStreams(); // As at the start of a program: a closed pipe is a failed write.
    std::filesystem::path program = ProgramFolder() / "UnitSuiteWorker";
    return {program.replace_extension(ProgramFile().extension()), {}, count, longest};
}

/// The reply of each request, or its failure in parentheses.
std::vector<std::string> Replies(const WorkerSettings& settings, const std::vector<std::string>& requests) {
    std::vector<std::string> replies(requests.size(), "nothing");
    WorkerPool(settings).Run(requests, [&](std::size_t number, const WorkerReply& reply) {
        EXPECT_EQ(replies[number], "nothing");
        replies[number] = reply.line ? *reply.line : '(' + reply.failure + ')';
    });
    return replies;
}

using Texts = std::vector<std::string>;

TEST(WorkerPool, EachRequest_GetsItsReply) {
    Texts requests;
    Texts wanted;
    for (int i = 0; i < 200; ++i) {
        requests.push_back(fmt::format("echo {}", i));
        wanted.push_back(fmt::format("{}", i));
    }
    for (const std::size_t count : {std::size_t{1}, std::size_t{3}})
        EXPECT_EQ(Replies(Settings(count), requests), wanted);
}

TEST(WorkerPool, NoRequest_NeedsNoWorker) {
    EXPECT_EQ(Replies(Settings(2), {}), Texts{});
}

TEST(WorkerPool, WorkerThatEnds_CostsItsRequestAndIsReplaced) {
    EXPECT_EQ(
        Replies(Settings(1), {"echo a", "crash", "echo b", "crash", "crash", "echo c"}),
        (Texts{"a", "(the worker has ended with exit code 3)", "b", "(the worker has ended with exit code 3)",
               "(the worker has ended with exit code 3)", "c"}));
}

// Half a second of real time: how long a worker may hang.
TEST(WorkerPool, WorkerThatHangs_IsReplaced) {
    EXPECT_EQ(Replies(Settings(1, std::chrono::milliseconds(500)), {"echo a", "hang", "echo b"}),
              (Texts{"a", "(the case has not ended after 500 ms)", "b"}));
}

TEST(WorkerPool, Stop_EndsWorkersThatHang) {
    WorkerPool pool(Settings(2));
    std::map<std::size_t, std::string> taken;
    std::jthread stopper;
    pool.Run({"echo a", "hang", "hang", "hang"}, [&](std::size_t number, const WorkerReply& reply) {
        taken[number] = reply.line.value_or(reply.failure);
        stopper = std::jthread([&pool] { pool.Stop(); });
    });
    EXPECT_EQ(taken, (std::map<std::size_t, std::string>{{0, "a"}}));
}

TEST(WorkerPool, StopBeforeTheRun_LetsNothingRun) {
    WorkerPool pool(Settings(2));
    pool.Stop();
    pool.Run({"hang", "hang"}, [](std::size_t, const WorkerReply&) { ADD_FAILURE(); });
}

TEST(WorkerPool, ProgramThatDoesNotExist_IsPassedOn) {
    WorkerSettings settings = Settings(2);
    settings.program += "missing";
    EXPECT_THROW(Replies(settings, {"echo a", "echo b", "echo c"}), std::system_error);
}

TEST(WorkerPool, ExceptionOfTheTaker_EndsTheRunAndIsPassedOn) {
    WorkerPool pool(Settings(2));
    EXPECT_THROW(pool.Run({"echo a", "hang"},
                          [](std::size_t, const WorkerReply&) { throw std::runtime_error("taker"); }),
                 std::runtime_error);
}

} // namespace

} // namespace vant::host
