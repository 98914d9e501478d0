#include <string>
#include <utility>

std::string broken(std::string text) {
    const std::string kept = std::move(text);
    return kept + text;
}
