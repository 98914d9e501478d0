#pragma once

#include <string>

#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

#include "input/error.hpp"

namespace zero_half {

/// The text with '?' for every character that is not printable.
std::string printable(std::string text);

/// Keeps the first complaint of the MPS reader and prints nothing.
class complaint_keeper : public CoinMessageHandler {
public:
    int print() override;
    const std::string& first() const { return first_; }

private:
    std::string first_;
};

/// Reads a file as fixed or as free MPS, as the caller chooses. CoinMpsIO itself reads every file
/// as fixed MPS unless its NAME line has the word FREE.
class mps_reader : public CoinMpsIO {
public:
    /// The contents of the file that CoinMpsIO ignores.
    struct extras {
        /// Why the file is not supported; the program that was read then differs from the file.
        std::string refusal;
        /// By a section OBJSENSE or by `(MAX)` in the NAME line.
        bool is_maximised = false;
    };

    /// Returns the number of errors, or a negative number when the file cannot be opened. Each
    /// line is a step of the poll; after it stopped, the file seems to end.
    int read(const std::string& file, bool is_free, reading_poll& poll, extras& found);
};

} // namespace zero_half
