#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "checks.hpp"

namespace zktarn::host_conformance {

namespace {

constexpr const char* usage =
    "usage: zktarn_host_conformance [--function NAME [--answer NUMBER]] [--console elsewhere]\n"
    "\n"
    "Checks the host whose libraries this program runs with, operation by operation.\n"
    "\n"
    "  --function NAME      call that function of the host's language, with a 1-by-1 struct:\n"
    "                       phase = 'conformance ', value = 2.5, column = [1; 2; 3]\n"
    "  --answer NUMBER      it must return that number, for instance 20.5 = value + the sum of\n"
    "                       column + the number of characters of phase\n"
    "  --console elsewhere  the host's console is not standard output: the texts are printed for\n"
    "                       you to check\n"
    "\n"
    "The exit status is 0 when every check passed, 1 when one failed, 2 for wrong arguments.\n";

double number(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !std::isfinite(value)) {
        throw std::invalid_argument("--answer needs a number, but was given '" + text + "'");
    }
    return value;
}

void apply(settings& wanted, const std::string& option, const std::string& value) {
    if (option == "--function") {
        if (value.empty()) {
            throw std::invalid_argument("--function needs the name of a function");
        }
        wanted.function = value;
    } else if (option == "--answer") {
        wanted.answer = number(value);
    } else if (value == "elsewhere") {
        wanted.console_is_standard_output = false;
    } else {
        throw std::invalid_argument("--console can only be 'elsewhere', but was given '" + value +
                                    "'");
    }
}

settings read(const std::vector<std::string>& arguments) {
    settings wanted;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        const std::string& option = arguments[i];
        if (option != "--function" && option != "--answer" && option != "--console") {
            throw std::invalid_argument("unknown argument '" + option + "'; --help lists them");
        }
        if (i + 1 == arguments.size()) {
            throw std::invalid_argument(option + " needs a value");
        }
        apply(wanted, option, arguments[i + 1]);
    }
    if (wanted.answer && wanted.function.empty()) {
        throw std::invalid_argument("--answer needs --function");
    }
    return wanted;
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && arguments[0] == "--help") {
        std::fputs(usage, stdout);
        return 0;
    }
    try {
        const settings wanted = read(arguments);
        report_signals();
        check_host(wanted);
    } catch (const std::invalid_argument& bad) {
        std::fprintf(stderr, "zktarn_host_conformance: %s\n", bad.what());
        return 2;
    }
    return summary() ? 0 : 1;
}

} // namespace

} // namespace zktarn::host_conformance

int main(int argc, char** argv) {
    return zktarn::host_conformance::run({argv + 1, argv + argc});
}
