// Test support: the text of the exception of type E that f throws, "(nothing thrown)" when
// none is; an exception of another type propagates and fails the test.
#pragma once

#include <stdexcept>
#include <string>

template <class E = std::logic_error, class F>
std::string Thrown(F&& f) {
    try {
        f();
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing thrown)";
}
