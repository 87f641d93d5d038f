#pragma once
// Sample arrays between numpy and the core: a 1-D float32 array of samples (full scale +-1) in,
// a float32 array out. Call with the interpreter lock held.
#include "PythonErrors.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cmath>
#include <cstring>
#include <vector>

using SampleArray = pybind11::array_t<float, pybind11::array::c_style | pybind11::array::forcecast>;

// The samples of a 1-D array (any real dtype, converted to float32). Throws BadArgument for an
// array of another shape, an empty one, or one holding NaN or infinity.
inline std::vector<float> samplesFrom(const SampleArray& samples, const char* name = "samples")
{
    if (samples.ndim() != 1)
        throw BadArgument(std::string(name) + " must be a 1-D array of samples");
    if (samples.size() == 0)
        throw BadArgument(std::string(name) + " holds no samples");
    std::vector<float> values(samples.data(), samples.data() + samples.size());
    for (float v : values)
        if (!std::isfinite(v))
            throw BadArgument(std::string(name) + " hold NaN or infinity");
    return values;
}

inline pybind11::array_t<float> floatArray(const std::vector<float>& values)
{
    pybind11::array_t<float> out(static_cast<pybind11::ssize_t>(values.size()));
    if (!values.empty())
        std::memcpy(out.mutable_data(), values.data(), values.size() * sizeof(float));
    return out;
}

inline pybind11::array_t<double> doubleArray(const std::vector<double>& values)
{
    pybind11::array_t<double> out(static_cast<pybind11::ssize_t>(values.size()));
    if (!values.empty())
        std::memcpy(out.mutable_data(), values.data(), values.size() * sizeof(double));
    return out;
}

// A sample rate in Hz: positive and at most 1 MHz.
inline double checkedRate(double rate)
{
    requireRange("rate", rate, 1.0, 1.0e6);
    return rate;
}
