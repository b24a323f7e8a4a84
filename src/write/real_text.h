#pragma once

#include <string>

// How reals are rounded and written, the same in every format.
namespace tarnwick {

// Single precision, which is what a model for drawing needs, without the rounding noise of sines and cosines.
float RoundReal(double value);

// As few digits as give the rounded number back, without an exponent, and without a point where it is whole.
void AppendReal(double value, std::string* out);

} // namespace tarnwick
