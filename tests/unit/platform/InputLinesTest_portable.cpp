#include "platform/InputLines.h"

#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace vant {

namespace {

/// Standard input is a pipe meanwhile.
class InputLinesTest : public ::testing::Test {
protected:
    InputLinesTest() {
        int ends[2] = {};
        EXPECT_EQ(pipe(ends), 0);
        m_writeEnd = ends[1];
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
    }
    ~InputLinesTest() override {
        End();
        dup2(m_former, STDIN_FILENO);
        close(m_former);
    }

    void Write(const std::string& text) const {
        ASSERT_EQ(write(m_writeEnd, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void End() {
        if (m_writeEnd >= 0)
            close(m_writeEnd);
        m_writeEnd = -1;
    }
    std::string Next() {
        return m_lines.Next([] { return false; }).value_or("(nothing)");
    }

    InputLines m_lines;
    int m_writeEnd = -1;

private:
    const int m_former = dup(STDIN_FILENO);
};

TEST_F(InputLinesTest, Lines_AreReturnedOneByOne) {
    Write("one\n\nthr");
    EXPECT_EQ(Next(), "one");
    EXPECT_EQ(Next(), "");
    Write("ee\nfour");
    EXPECT_EQ(Next(), "three");
    End();
    EXPECT_EQ(Next(), "four") << "the last line may lack its end";
    EXPECT_EQ(Next(), "(nothing)");
}

TEST_F(InputLinesTest, LongLine_IsWhole) {
    const std::string line(20000, 'x');
    Write(line + '\n');
    EXPECT_EQ(Next(), line);
}

TEST_F(InputLinesTest, NoLine_EndsTheWaitOnceItIsOver) {
    Write("half a line");
    int calls = 0;
    EXPECT_EQ(m_lines.Next([&] { return ++calls == 3; }), std::nullopt);
    EXPECT_EQ(calls, 3);
    Write("\n");
    EXPECT_EQ(Next(), "half a line");
}

} // namespace

} // namespace vant
