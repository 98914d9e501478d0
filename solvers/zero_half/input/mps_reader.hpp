#pragma once

#include <string>

#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

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

/// Reads a file as fixed or as free MPS, whichever the caller says. CoinMpsIO itself takes every
/// file for fixed MPS unless its NAME line says FREE.
class mps_reader : public CoinMpsIO {
public:
    /// Returns the number of errors, or a negative number when the file cannot be opened.
    /// `refusal` receives the reason when the file has parts that this reader does not support;
    /// what was read is then not the program of the file.
    int read(const std::string& file, bool is_free, std::string& refusal);
};

} // namespace zero_half
