#include "zktarn_standin/call_stack.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include <cxxabi.h>
#include <dlfcn.h>

#if __has_include(<execinfo.h>)
#include <execinfo.h>
#define ZKTARN_STANDIN_HAS_BACKTRACE
#endif

#include "origin.hpp"

namespace zktarn::standin {

namespace {

constexpr std::size_t deepest = 32;

bool wanted_at_start() noexcept {
    const char* const chosen = std::getenv("ZKTARN_STANDIN_ORIGINS");
    return chosen != nullptr && std::strcmp(chosen, "1") == 0;
}

std::atomic<bool>& recorded() noexcept {
    static std::atomic<bool> on = wanted_at_start();
    return on;
}

/// The symbol that contains an address; its file is "" where neither a library nor a program does.
Dl_info symbol_at(void* address) noexcept {
    Dl_info symbol = {};
    symbol.dli_fname = "";
    dladdr(address, &symbol);
    return symbol;
}

std::string_view file_name(const Dl_info& symbol) {
    const std::string_view path = symbol.dli_fname;
    return path.substr(path.rfind('/') + 1);
}

constexpr std::array<std::string_view, 4> libraries = {"libzkoptimutil", "libqv", "libqvx",
                                                       "libut"};

/// Whether a call is inside one of the stand-in's libraries.
bool is_in_standin(void* address) noexcept {
    const Dl_info symbol = symbol_at(address);
    const std::string_view file = file_name(symbol);
    const std::string_view library = file.substr(0, file.find('.'));
    return std::find(libraries.begin(), libraries.end(), library) != libraries.end();
}

std::string hexadecimal(std::uintptr_t number) {
    std::array<char, 24> digits = {};
    std::snprintf(digits.data(), digits.size(), "0x%llx", static_cast<unsigned long long>(number));
    return digits.data();
}

std::string demangled(const char* symbol) {
    char* const readable = abi::__cxa_demangle(symbol, nullptr, nullptr, nullptr);
    std::string name = readable != nullptr ? readable : symbol;
    std::free(readable);
    return name;
}

/// "solve(model const&) (solver)", "solver+0x1f2a" without a name, or "+0x7f12ab00" without a file.
std::string described(void* address) {
    const Dl_info symbol = symbol_at(address);
    const std::string file(file_name(symbol));
    if (symbol.dli_sname == nullptr) {
        return file + "+" +
               hexadecimal(reinterpret_cast<std::uintptr_t>(address) -
                           reinterpret_cast<std::uintptr_t>(symbol.dli_fbase));
    }
    return demangled(symbol.dli_sname) + " (" + file + ")";
}

} // namespace

call_stack call_stack::current() noexcept {
    call_stack stack;
#ifdef ZKTARN_STANDIN_HAS_BACKTRACE
    std::array<void*, deepest + 16> addresses = {};
    void** const end =
        addresses.data() + backtrace(addresses.data(), static_cast<int>(addresses.size()));
    // A sanitizer's own frame may come before those of the stand-in.
    void** const inside = std::find_if(addresses.data(), end, is_in_standin);
    void** const first = std::find_if_not(inside, end, is_in_standin);
    try {
        const auto depth = std::min(static_cast<std::size_t>(end - first), deepest);
        stack.addresses_ = std::make_shared<const std::vector<void*>>(first, first + depth);
    } catch (const std::bad_alloc&) {
        // Without memory the stack stays empty.
    }
#endif
    return stack;
}

std::vector<std::string> call_stack::lines() const {
    std::vector<std::string> all;
    if (addresses_ != nullptr) {
        for (void* const each : *addresses_) {
            // The address is the one to return to, which may be the start of the next function.
            all.push_back(described(static_cast<char*>(each) - 1));
        }
    }
    return all;
}

bool record_origins(bool on) noexcept {
    return recorded().exchange(on);
}

call_stack origin_now() noexcept {
    return recorded().load(std::memory_order_relaxed) ? call_stack::current() : call_stack();
}

void reset_origins() noexcept {
    record_origins(wanted_at_start());
}

} // namespace zktarn::standin
