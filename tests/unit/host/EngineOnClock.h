#pragma once

#include "host/engine/objects/EngineAccess.h"
#include "host/object/VariantValue.h"
#include "host/procedure/EngineReader.h"
#include "host/record/Value.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vant::host {

/// An engine on a clock that the test sets; times in milliseconds.
class EngineOnClock : public ::testing::Test {
protected:
    void Start(std::string_view toml, std::int64_t beginning = 0) {
        Diagnostics found;
        const EngineDescription description = ReadEngine(toml, found);
        for (const Diagnostic& each : found.Sorted())
            ADD_FAILURE() << each.Text("engine");
        now = beginning;
        engine = std::make_unique<Engine>(description, [this] { return now.load(); });
    }

    Value ValueAt(std::int64_t time, const std::string& id) {
        now = time;
        CComVariant value;
        EXPECT_EQ(ReadValue(*engine, id, value), S_OK);
        return ToValue(value.Get());
    }
    double NumberAt(std::int64_t time, const std::string& id) {
        return NumberIn(ValueAt(time, id)).value_or(std::nan(""));
    }
    /// Reads the parameter at each of the times and expects the number beside it.
    void ExpectNumbers(const std::string& id, const std::vector<std::pair<std::int64_t, double>>& readings) {
        for (const auto& [time, number] : readings)
            EXPECT_EQ(NumberAt(time, id), number) << id << " at " << time;
    }
    std::wstring TextAt(std::int64_t time, const std::string& id) {
        now = time;
        CComBSTR text;
        EXPECT_EQ(ReadText(*engine, id, text), S_OK);
        return std::wstring(text.Text());
    }
    HRESULT CodeAt(std::int64_t time, const std::string& id) {
        now = time;
        CComVariant value;
        return ReadValue(*engine, id, value);
    }
    HRESULT WriteAt(std::int64_t time, const std::string& id, double number) {
        now = time;
        return WriteValue(*engine, id, CComVariant(number).Get());
    }

    std::atomic<std::int64_t> now{0};
    std::unique_ptr<Engine> engine;
};

} // namespace vant::host
