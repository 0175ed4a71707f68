// Why a model for speech recognition could not be had.
#pragma once

#include <stdexcept>

namespace korvane {

/// One sentence for the person.
class ModelError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The disk has no room left.
class FullDiskError : public ModelError {
  public:
    using ModelError::ModelError;
};

}  // namespace korvane
