#include <cstdio>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libqvx.hpp"

namespace zktarn::standin {

namespace {

class Console : public StandinTest {
protected:
    /// The text that `work` writes to standard output.
    template <class Work>
    static std::string shown_by(Work work) {
        testing::internal::CaptureStdout();
        work();
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(Console, ShowsAndDoesNotCaptureTextInitially) {
    EXPECT_EQ(shown_by([] { EXPECT_EQ(print_text("Iter  F-count\n"), 0); }), "Iter  F-count\n");
    EXPECT_EQ(console_text(), "");
}

TEST_F(Console, CapturesTextAndShowsNone) {
    EXPECT_EQ(set_console(console::capture), console::show);
    EXPECT_EQ(shown_by([] { EXPECT_EQ(print_text("a\n"), 0); }), "");
    print_text("b");
    EXPECT_EQ(console_text(), "a\nb");
}

TEST_F(Console, MirrorsText) {
    set_console(console::mirror);
    EXPECT_EQ(shown_by([] { EXPECT_EQ(print_text("a\n"), 0); }), "a\n");
    EXPECT_EQ(console_text(), "a\n");
}

TEST_F(Console, WritesExactlyTheGivenCharacters) {
    const std::string text("100 %d \\n\0 \n  ", 14);
    set_console(console::mirror);
    EXPECT_EQ(shown_by([&] { print_text(text); }), text);
    EXPECT_EQ(console_text(), text);
}

TEST_F(Console, WritesNoMoreCharactersThanTheLength) {
    set_console(console::capture);
    EXPECT_EQ(host::qvxprintf800_("abcdef", 3), 0);
    EXPECT_EQ(host::qvxprintf800_("abcdef", 0), 0);
    EXPECT_EQ(host::qvxprintf800_(nullptr, 0), 0);
    EXPECT_EQ(console_text(), "abc");
    set_console(console::show);
    EXPECT_EQ(shown_by([] { host::qvxprintf800_("abcdef", 4); }), "abcd");
}

TEST_F(Console, ANegativeLengthIsAFault) {
    set_console(console::capture);
    EXPECT_EQ(host::qvxprintf800_("abc", -3), 1);
    expect_fault(fault_kind::bad_request, "qvxprintf800_: the length of a text is -3");
    EXPECT_EQ(console_text(), "");
}

TEST_F(Console, ReturnsThePreviousModeAndKeepsTheCapturedText) {
    EXPECT_EQ(set_console(console::mirror), console::show);
    EXPECT_EQ(set_console(console::capture), console::mirror);
    print_text("kept");
    EXPECT_EQ(set_console(console::show), console::capture);
    EXPECT_EQ(shown_by([] { print_text("shown"); }), "shown");
    EXPECT_EQ(console_text(), "kept");
}

TEST_F(Console, ClearingDiscardsTheText) {
    set_console(console::capture);
    print_text("a");
    host::ioFlushOptim();
    clear_console();
    EXPECT_EQ(console_text(), "");
    EXPECT_EQ(flushed_console_text(), "");
    print_text("b");
    EXPECT_EQ(console_text(), "b");
    EXPECT_EQ(flushed_console_text(), "");
}

TEST_F(Console, ReturnsTheTextCapturedBeforeTheLastFlush) {
    set_console(console::capture);
    host::ioFlushOptim();
    EXPECT_EQ(flushed_console_text(), "");
    print_text("a");
    print_text("b");
    EXPECT_EQ(flushed_console_text(), "");
    host::ioFlushOptim();
    print_text("c");
    EXPECT_EQ(flushed_console_text(), "ab");
    EXPECT_EQ(console_text(), "abc");
    host::ioFlushOptim();
    EXPECT_EQ(flushed_console_text(), "abc");
}

TEST_F(Console, ResetDiscardsTheTextAndKeepsTheDestination) {
    set_console(console::capture);
    print_text("a");
    host::ioFlushOptim();
    reset();
    EXPECT_EQ(console_text(), "");
    EXPECT_EQ(flushed_console_text(), "");
    EXPECT_EQ(shown_by([] { print_text("b"); }), "");
    EXPECT_EQ(console_text(), "b");
    EXPECT_EQ(set_console(console::show), console::capture);
}

/// Reads from a pipe until the last process that can write to it has closed its end.
std::string contents_of(int pipe) {
    std::string text;
    char character = 0;
    while (read(pipe, &character, 1) == 1) {
        text += character;
    }
    return text;
}

TEST_F(Console, AFlushWritesBufferedText) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    std::fflush(stdout);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
        print_text("flushed");
        host::ioFlushOptim();
        print_text("not flushed");
        // Discards the text that stdio still buffers.
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        _exit(0);
    }
    close(ends[1]);
    EXPECT_EQ(contents_of(ends[0]), "flushed");
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
}

} // namespace

} // namespace zktarn::standin
