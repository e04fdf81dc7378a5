// Test fixture for all contract suites.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "support/errors/RuntimeError.hpp"
#include "tests/contract/Subjects.hpp"

namespace vantor::contract {

template <typename Subject>
class Contract : public testing::TestWithParam<Maker<Subject>> {
protected:
    std::unique_ptr<Subject> subject = this->GetParam().make();
};

/// The number of the RuntimeError that `body` raises; 0 if none.
template <typename Body>
std::int32_t ErrorOf(Body&& body) {
    try {
        body();
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace vantor::contract
