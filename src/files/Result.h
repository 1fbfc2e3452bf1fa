#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace brimvault::files {

/// An error: the system's error number and the path that it concerns.
struct Failure {
    int code = 0;                ///< an errno value, never 0 in a failure
    std::filesystem::path path;  ///< bytes, not for display

    /// The system's own text for the code, in the language of the process.
    [[nodiscard]] std::string text() const { return std::generic_category().message(code); }
};

/// A value, or the errno value that says why there is none.
template <typename Value>
class [[nodiscard]] Result {
public:
    Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
    static Result failed(int code) { return Result(std::in_place_index<1>, code); }

    explicit operator bool() const { return content_.index() == 0; }
    Value& operator*() { return std::get<0>(content_); }
    Value* operator->() { return &std::get<0>(content_); }
    const Value& operator*() const { return std::get<0>(content_); }
    const Value* operator->() const { return &std::get<0>(content_); }
    /// 0 when there is a value.
    [[nodiscard]] int code() const { return content_.index() == 1 ? std::get<1>(content_) : 0; }

private:
    Result(std::in_place_index_t<1> index, int code) : content_(index, code) {}
    std::variant<Value, int> content_;
};

}  // namespace brimvault::files
