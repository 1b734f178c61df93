#include "host/engine/objects/EngineAccess.h"
#include "host/object/VariantValue.h"

#include <gtest/gtest.h>
#include <limits>
#include <thread>

namespace vant::host {

namespace {

EngineParameter With(Value value) {
    EngineParameter parameter;
    parameter.value = std::move(value);
    return parameter;
}

class EngineTest : public ::testing::Test {
protected:
    EngineTest() {
        description["int"] = With(std::int64_t{800});
        description["int"].min = 0;
        description["int"].max = 3000;
        description["real"] = With(12.5);
        description["text"] = With("OFF");
        description["truth"] = With(true);
        description["fixed"] = With(std::int64_t{1});
        description["fixed"].readOnly = true;
        description["broken"] = With(std::int64_t{1});
        description["broken"].fails = true;
        description["named"] = With(std::int64_t{2});
        description["named"].text = "second gear";
    }

    static CComVariant Text(std::wstring_view text) { return CComVariant(CComBSTR(text)); }

    static Value ValueOf(const Engine& engine, const std::string& id) {
        CComVariant value;
        EXPECT_EQ(ReadValue(engine, id, value), S_OK);
        return ToValue(value.Get());
    }
    static std::wstring TextOf(const Engine& engine, const std::string& id) {
        CComBSTR text;
        EXPECT_EQ(ReadText(engine, id, text), S_OK);
        return std::wstring(text.Text());
    }

    std::map<std::string, EngineParameter> description;
};

TEST_F(EngineTest, Values_KeepTheTypesOfTheDescription) {
    const Engine engine(description);
    EXPECT_EQ(ValueOf(engine, "int"), Value(std::int64_t{800}));
    EXPECT_EQ(ValueOf(engine, "real"), Value(12.5));
    EXPECT_EQ(ValueOf(engine, "text"), Value("OFF"));
    EXPECT_EQ(ValueOf(engine, "truth"), Value(true));
}

TEST_F(EngineTest, Texts_AreThoseOfTheValues) {
    const Engine engine(description);
    EXPECT_EQ(TextOf(engine, "int"), L"800");
    EXPECT_EQ(TextOf(engine, "real"), L"12.5");
    EXPECT_EQ(TextOf(engine, "text"), L"OFF");
    EXPECT_EQ(TextOf(engine, "truth"), L"-1");
}

TEST_F(EngineTest, OwnText_IsReturnedUntilTheFirstWrite) {
    Engine engine(description);
    EXPECT_EQ(TextOf(engine, "named"), L"second gear");
    EXPECT_EQ(WriteValue(engine, "named", CComVariant(LONG{3}).Get()), S_OK);
    EXPECT_EQ(TextOf(engine, "named"), L"3");
}

TEST_F(EngineTest, WrittenValue_IsConvertedToTheParametersType) {
    Engine engine(description);
    EXPECT_EQ(WriteValue(engine, "int", Text(L"1,200").Get()), S_OK);
    EXPECT_EQ(ValueOf(engine, "int"), Value(std::int64_t{1200}));
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(2.5).Get()), S_OK);
    EXPECT_EQ(ValueOf(engine, "int"), Value(std::int64_t{2}));
    EXPECT_EQ(WriteValue(engine, "real", CComVariant(LONG{3}).Get()), S_OK);
    EXPECT_EQ(ValueOf(engine, "real"), Value(3.0));
    EXPECT_EQ(WriteValue(engine, "text", CComVariant(1.25).Get()), S_OK);
    EXPECT_EQ(ValueOf(engine, "text"), Value("1.25"));
    EXPECT_EQ(TextOf(engine, "int"), L"2");
}

TEST_F(EngineTest, ValueThatCannotBeConverted_IsRefusedAndChangesNothing) {
    Engine engine(description);
    EXPECT_EQ(WriteValue(engine, "int", Text(L"fast").Get()), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(1e10).Get()), DISP_E_OVERFLOW);
    EXPECT_EQ(ValueOf(engine, "int"), Value(std::int64_t{800}));
}

TEST_F(EngineTest, ValueByReference_IsRefused) {
    Engine engine(description);
    LONG number = 5;
    VARIANT value{};
    value.vt = VT_BYREF | VT_I4;
    value.byref = &number;
    EXPECT_EQ(WriteValue(engine, "int", value), E_INVALIDARG);
}

TEST_F(EngineTest, Limits_AreAccepted) {
    Engine engine(description);
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(LONG{0}).Get()), S_OK);
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(LONG{3000}).Get()), S_OK);
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(LONG{-1}).Get()), E_BOUNDS);
    EXPECT_EQ(WriteValue(engine, "int", CComVariant(LONG{3001}).Get()), E_BOUNDS);
    EXPECT_EQ(ValueOf(engine, "int"), Value(std::int64_t{3000}));
}

TEST_F(EngineTest, NotANumber_LiesWithinNoLimit) {
    description["real"].max = 100;
    Engine engine(description);
    EXPECT_EQ(WriteValue(engine, "real", CComVariant(std::numeric_limits<double>::quiet_NaN()).Get()),
              E_BOUNDS);
    EXPECT_EQ(ValueOf(engine, "real"), Value(12.5));
}

TEST_F(EngineTest, ReadOnlyParameter_RefusesWritesAndReturnsItsValue) {
    Engine engine(description);
    EXPECT_EQ(WriteValue(engine, "fixed", CComVariant(LONG{2}).Get()), E_ACCESSDENIED);
    EXPECT_EQ(ValueOf(engine, "fixed"), Value(std::int64_t{1}));
}

TEST_F(EngineTest, FailingParameter_RefusesReadsAndAcceptsWrites) {
    Engine engine(description);
    CComVariant value;
    CComBSTR text;
    EXPECT_EQ(ReadValue(engine, "broken", value), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(ReadText(engine, "broken", text), HRESULT_FROM_WIN32(ERROR_READ_FAULT));
    EXPECT_EQ(value.Get().vt, VT_EMPTY);
    EXPECT_EQ(WriteValue(engine, "broken", CComVariant(LONG{2}).Get()), S_OK);
}

TEST_F(EngineTest, UnknownParameter_IsNotFound) {
    Engine engine(description);
    CComVariant value;
    CComBSTR text;
    EXPECT_EQ(ReadValue(engine, "Int", value), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(ReadText(engine, "", text), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
    EXPECT_EQ(WriteValue(engine, "none", CComVariant(LONG{2}).Get()), HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
}

TEST_F(EngineTest, ReadersAndWritersOnManyThreads_SeeWholeValues) {
    Engine engine(description);
    const std::wstring texts[] = {std::wstring(200, L'a'), std::wstring(300, L'b')};
    ASSERT_EQ(WriteValue(engine, "text", Text(texts[0]).Get()), S_OK);
    std::vector<std::thread> threads;
    for (const std::wstring& text : texts) {
        threads.emplace_back([&engine, &text] {
            for (int i = 0; i < 200; ++i)
                EXPECT_EQ(WriteValue(engine, "text", Text(text).Get()), S_OK);
        });
        threads.emplace_back([&engine, &texts] {
            for (int i = 0; i < 200; ++i) {
                const std::wstring read = TextOf(engine, "text");
                EXPECT_TRUE(read == texts[0] || read == texts[1]);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

} // namespace vant::host
