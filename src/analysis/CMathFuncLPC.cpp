// CMathFunc's linear prediction: coefficients by the autocorrelation method, the level of the
// inverse filter on a 256-point grid, and the entry to formant extraction.
#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"
#include "document/Log.h"

#include <algorithm>
#include <memory>
#include <vector>

thread_local const RootRecord* lp_Roots = nullptr;

namespace
{

// Work vectors of the calling thread: the windowed frame, the autocorrelation, the two Schur
// generator rows and the step-up copy.
struct LpcWork {
    std::vector<double> frame;
    double r[kMaxLpcOrder + 1] = {};
    double ep[kMaxLpcOrder + 1] = {};
    double en[kMaxLpcOrder + 1] = {};
    double reversed[kMaxLpcOrder + 1] = {};
    lpcout result;
};
LpcWork& lpcWork()
{
    // On the heap, made on first use, so that threads that never analyse do not carry it.
    thread_local const std::unique_ptr<LpcWork> work = std::make_unique<LpcWork>();
    return *work;
}

// Predictor coefficients from reflection coefficients (step-up recursion).
void stepUp(lpcout& out, double* reversed)
{
    const int order = out.order;
    out.a[0] = 1.0;
    if (order < 1)
        return;
    out.a[1] = out.k[1];
    for (int i = 2; i <= order; ++i) {
        for (int j = 1; j < i; ++j)
            reversed[j] = out.a[i - j];
        for (int j = 1; j < i; ++j)
            out.a[j] += out.k[i] * reversed[j];
        out.a[i] = out.k[i];
    }
}

} // namespace

lpcout* CMathFunc::autolpc(const double* x, int n, int order)
{
    LpcWork& w = lpcWork();
    lpcout& out = w.result;
    if (order > kMaxLpcOrder) {
        Log::write("Requested LPC order too large\n");
        order = kMaxLpcOrder;
    }
    order = std::max(order, 0);
    n = std::max(n, 0);
    out.order = order;

    for (int i = 0; i <= order; ++i) {
        double sum = 0.0;
        for (int j = 0; j + i < n; ++j)
            sum += x[j] * x[j + i];
        w.r[i] = sum;
    }

    // Schur recursion: ep holds the forward generator from lag m + 1 on, en the backward one
    // from lag m on; en[0] ends as the residual energy.
    for (int j = 0; j < order; ++j) {
        w.ep[j] = w.r[j + 1];
        w.en[j] = w.r[j];
    }
    if (order == 0)
        w.en[0] = w.r[0];
    for (int m = 0; m < order; ++m) {
        const double k = -w.ep[0] / w.en[0];
        out.k[m + 1] = k;
        const int remaining = order - m;
        for (int j = 0; j < remaining; ++j) {
            w.en[j] += k * w.ep[j];
            if (j + 1 < remaining)
                w.ep[j] = w.ep[j + 1] + k * w.en[j + 1];
        }
    }
    out.energy = w.en[0];
    stepUp(out, w.reversed);
    return &out;
}

const lpcout* CMathFunc::lastLpc() const
{
    return &lpcWork().result;
}

const RootRecord* CMathFunc::DoLPC(double* data, int order, int n, double preEmphasis, int window,
                                   unsigned char smooth, int nOut, int frequencyRange, double sampleRate,
                                   unsigned char formants, unsigned char coefficientsOnly)
{
    LpcWork& w = lpcWork();
    n = std::max(n, 0);
    if (w.frame.size() < static_cast<std::size_t>(n))
        w.frame.resize(static_cast<std::size_t>(n));
    spectrum::windowFrame(data, n, preEmphasis, window, w.frame.data());
    const lpcout* lpc = autolpc(w.frame.data(), n, order);

    if (formants) {
        lp_Roots = rootsub(lpc->order, 600.0, lpc->a, sampleRate);
        return lp_Roots;
    }
    if (coefficientsOnly)
        return nullptr;

    constexpr int kPoints = 256;
    spectrum::TransformArrays& arrays = spectrum::transformArrays();
    double* re = arrays.dRealpart.data();
    double* im = arrays.dImagpart.data();
    std::fill(re, re + kPoints, 0.0);
    std::fill(im, im + kPoints, 0.0);
    std::copy(lpc->a, lpc->a + std::min(lpc->order + 1, kPoints), re);
    FFT_CODE_REAL(re, im, 8);
    for (int i = 0; i < kPoints / 2; ++i)
        data[i] = spectrum::levelDb(re[i], im[i]);
    if (smooth)
        Smooth(data, kPoints, nOut, frequencyRange, sampleRate);
    return nullptr;
}
