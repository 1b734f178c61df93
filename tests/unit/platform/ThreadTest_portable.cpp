#include "platform/Thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>

namespace vant {
namespace {

std::string NameAfter(std::wstring_view name) {
    std::string result;
    std::thread([&] {
        NameThisThread(name);
        char buffer[64] = {};
        pthread_getname_np(pthread_self(), buffer, sizeof buffer);
        result = buffer;
    }).join();
    return result;
}

TEST(PortableThread, ShortName_IsTheThreadsName) {
    EXPECT_EQ(NameAfter(L"watch"), "watch");
}

TEST(PortableThread, LongName_IsCutAtFifteenBytes) {
    EXPECT_EQ(NameAfter(L"Persistent Thread"), "Persistent Thre");
}

TEST(PortableThread, LongName_IsCutBetweenCharacters) {
    EXPECT_EQ(NameAfter(L"Persistent Thr\u00E9ad"), "Persistent Thr");
}

} // namespace
} // namespace vant
