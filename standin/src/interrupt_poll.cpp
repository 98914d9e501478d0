#include "interrupt_poll.hpp"

#include <atomic>
#include <cerrno>
#include <mutex>

#include <signal.h>
#include <time.h>

#include "zktarn_standin/interrupts.hpp"

namespace zktarn::standin {

namespace {

// Written by the signal handler, so they must be free of locks.
std::atomic<bool> pending = false;
std::atomic<std::int64_t> last_signal = 0;
static_assert(std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

std::atomic<std::int64_t> polls_to_interrupt = 0;

/// Locked by polls and settings, which change the handler; the signal handler does not lock it.
/// Never destroyed, because a solver may poll while the process exits.
std::mutex& handler_lock() {
    static auto& lock = *new std::mutex;
    return lock;
}

struct sigaction previous_handler;
std::atomic<bool> listening = false;
// Whether a call or the first poll has decided who receives SIGINT.
bool settled = false;

std::int64_t nanoseconds_now() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

/// Everything here may be called in a signal handler.
void on_sigint(int) {
    constexpr std::int64_t two_seconds = 2'000'000'000;
    const int error = errno;
    const std::int64_t now = nanoseconds_now();
    const std::int64_t before = last_signal.exchange(now);
    if (before != 0 && now - before < two_seconds) {
        // Blocked until this handler returns; the previous handler receives it then.
        sigaction(SIGINT, &previous_handler, nullptr);
        listening = false;
        raise(SIGINT);
    } else {
        pending = true;
    }
    errno = error;
}

bool is_ours(const struct sigaction& handler) noexcept {
    return (handler.sa_flags & SA_SIGINFO) == 0 && handler.sa_handler == on_sigint;
}

void start_listening() noexcept {
    struct sigaction ours = {};
    ours.sa_handler = on_sigint;
    ours.sa_flags = SA_RESTART;
    sigemptyset(&ours.sa_mask);
    last_signal = 0;
    // First, because a signal may arrive as soon as the handler is installed.
    sigaction(SIGINT, nullptr, &previous_handler);
    sigaction(SIGINT, &ours, nullptr);
    listening = true;
}

/// Restores the previous handler, unless the program has installed another one since.
void stop_listening() noexcept {
    struct sigaction installed = {};
    sigaction(SIGINT, nullptr, &installed);
    if (is_ours(installed)) {
        sigaction(SIGINT, &previous_handler, nullptr);
    }
    listening = false;
}

void set_listening(bool on) noexcept {
    if (on != listening) {
        on ? start_listening() : stop_listening();
    }
}

/// A program that was started with SIGINT ignored, such as a background job, continues to ignore
/// it.
bool is_ignored() noexcept {
    struct sigaction installed = {};
    sigaction(SIGINT, nullptr, &installed);
    return installed.sa_handler == SIG_IGN;
}

/// Counts a poll and returns whether an interrupt was planned for it.
bool is_planned_poll() noexcept {
    return polls_to_interrupt > 0 && polls_to_interrupt.fetch_sub(1) == 1;
}

} // namespace

void raise_interrupt() noexcept {
    pending = true;
}

void interrupt_at_poll(std::int64_t k) noexcept {
    polls_to_interrupt = k;
}

bool listen_for_sigint(bool on) noexcept {
    const std::lock_guard guard(handler_lock());
    const bool before = listening;
    settled = true;
    set_listening(on);
    return before;
}

bool take_interrupt() noexcept {
    {
        const std::lock_guard guard(handler_lock());
        if (!settled) {
            settled = true;
            set_listening(!is_ignored());
        }
    }
    const bool planned = is_planned_poll();
    return pending.exchange(false) || planned;
}

void reset_interrupts() noexcept {
    const std::lock_guard guard(handler_lock());
    set_listening(false);
    settled = false;
    pending = false;
    polls_to_interrupt = 0;
}

} // namespace zktarn::standin
