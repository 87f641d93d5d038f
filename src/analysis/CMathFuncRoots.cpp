// CMathFunc's polynomial root finder: a predictor polynomial is factored completely, one real
// root or one quadratic factor at a time, and each quadratic factor becomes a pole pair with a
// frequency and a bandwidth (a formant candidate).
#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"
#include "document/Log.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace
{

constexpr double kTolerance = 1e-4;
constexpr int kIterationBudget = 100;

// The calling thread's polynomial being factored, its quotient after each factor, the record
// handed out, and scratch rows of the factoring strategies (grown on demand).
struct RootWork {
    double dPoleCoeff[1000] = {};
    double quocoe[1000] = {};
    RootRecord record;
    std::vector<double> b, c, reversed;
};
RootWork& rootWork()
{
    // On the heap, made on first use, so that threads that never analyse do not carry it.
    thread_local const std::unique_ptr<RootWork> work = std::make_unique<RootWork>();
    return *work;
}

std::vector<double>& sized(std::vector<double>& v, int n)
{
    if (v.size() < static_cast<std::size_t>(n) + 1)
        v.resize(static_cast<std::size_t>(n) + 1);
    return v;
}

bool signChange(double f1, double f2)
{
    return (f1 < 0.0 && f2 > 0.0) || (f1 > 0.0 && f2 < 0.0);
}

// Bisection of [x1, x2] whose ends differ in sign; stops on a relative width below the
// tolerance, on a midpoint that equals an end, or on an exact zero.
double bisect(CMathFunc& math, int n, const double* a, double x1, double f1, double x2, double tolerance)
{
    for (;;) {
        const double xm = 0.5 * (x1 + x2);
        const double scale = std::max(std::fabs(x1), std::fabs(x2));
        if (std::fabs(x2 - x1) / scale < tolerance || xm == x1 || xm == x2)
            return xm;
        const double fm = math.rvalue(n, a, xm);
        if (fm == 0.0)
            return xm;
        if (signChange(f1, fm)) {
            x2 = xm;
        } else {
            x1 = xm;
            f1 = fm;
        }
    }
}

// Scans [-1.2, 1.2) in steps of 1/n for an exact zero or a sign change.
bool scanForRealRoot(CMathFunc& math, int n, const double* a, double tolerance, double* root)
{
    const double step = 1.0 / n;
    double x1 = -1.2;
    double f1 = math.rvalue(n, a, x1);
    if (f1 == 0.0) {
        *root = x1;
        return true;
    }
    for (double x2 = x1 + step; x2 < 1.2; x2 += step) {
        const double f2 = math.rvalue(n, a, x2);
        if (f2 == 0.0) {
            *root = x2;
            return true;
        }
        if (signChange(f1, f2)) {
            *root = bisect(math, n, a, x1, f1, x2, tolerance);
            return true;
        }
        x1 = x2;
        f1 = f2;
    }
    return false;
}

// quotient[0 .. n-1] = a / (x - root) by synthetic division.
void deflate(int n, const double* a, double root, double* quotient)
{
    quotient[0] = a[0];
    for (int i = 1; i < n; ++i)
        quotient[i] = a[i] + root * quotient[i - 1];
}

// Sorts the formants by frequency, their bandwidths with them. Straight insertion: equal
// frequencies keep their order.
void sortFormants(RootRecord& rec)
{
    for (int i = 1; i < rec.formantCount; ++i) {
        const double f = rec.frequency[i], b = rec.bandwidth[i];
        int j = i - 1;
        for (; j >= 0 && rec.frequency[j] > f; --j) {
            rec.frequency[j + 1] = rec.frequency[j];
            rec.bandwidth[j + 1] = rec.bandwidth[j];
        }
        rec.frequency[j + 1] = f;
        rec.bandwidth[j + 1] = b;
    }
}

} // namespace

const RootRecord* CMathFunc::rootsub(int degree, double maxBandwidth, const double* poly, double sampleRate)
{
    RootWork& w = rootWork();
    RootRecord& rec = w.record;
    rec = RootRecord{};
    if (degree < 2)
        return &rec;
    if (degree > kMaxLpcOrder) {
        Log::printf("rootsub: degree %d above %d refused\n", degree, kMaxLpcOrder);
        return nullptr;
    }
    std::copy(poly, poly + degree + 1, w.dPoleCoeff);
    double* current = w.dPoleCoeff;
    double* quotient = w.quocoe;
    int taken = 0;
    while (degree > 1) {
        double p = 0.0, q = 0.0;
        if (degree == 2) {
            p = current[1];
            q = current[2];
        } else {
            double r = 0.0, s = 0.0;
            const int result = factor(degree, current, quotient, &r, &s);
            if (result == 1) {
                degree -= 1;
                std::swap(current, quotient);
                continue;
            }
            if (result == 0)
                return nullptr;
            if (result != 2) {
                Log::write("  factor() is confused,");
                return nullptr;
            }
            p = -r;
            q = -s;
        }
        const PolePair pair = cmpfb2(p, q, sampleRate);
        rec.p[taken] = p;
        rec.q[taken] = q;
        rec.zreal[taken] = pair.zreal;
        rec.zimag[taken] = pair.zimag;
        ++taken;
        degree -= 2;
        if (pair.tbandw <= maxBandwidth) {
            rec.frequency[rec.formantCount] = pair.tfreq;
            rec.bandwidth[rec.formantCount] = pair.tbandw;
            ++rec.formantCount;
        }
        std::swap(current, quotient);
    }
    sortFormants(rec);
    rec.factorCount = taken;
    return &rec;
}

int CMathFunc::factor(int n, const double* a, double* quotient, double* p, double* q)
{
    *q = 0.0;
    if (rfactr(n, a, quotient, p, kTolerance))
        return 1;
    if (barstw(n, a, quotient, kTolerance, kIterationBudget, p, q))
        return 2;
    if (frwbkw(n, a, quotient, p, q, kIterationBudget, kTolerance))
        return 2;
    return 0;
}

int CMathFunc::rfactr(int n, const double* a, double* quotient, double* root, double tolerance)
{
    if (n < 1)
        return 0;
    double x = 0.0;
    if (scanForRealRoot(*this, n, a, tolerance, &x)) {
        deflate(n, a, x, quotient);
        *root = x;
        return 1;
    }
    // Roots outside the scanned interval are reciprocals of roots of the reversed polynomial.
    std::vector<double>& reversed = sized(rootWork().reversed, n);
    for (int i = 0; i <= n; ++i)
        reversed[i] = a[n - i];
    if (!scanForRealRoot(*this, n, reversed.data(), tolerance, &x))
        return 0;
    std::vector<double>& b = sized(rootWork().b, n);
    deflate(n, reversed.data(), x, b.data());
    const double lead = b[n - 1];
    for (int i = 0; i < n; ++i)
        quotient[i] = b[n - 1 - i] / lead;
    *root = 1.0 / x;
    return 1;
}

int CMathFunc::barstw(int n, const double* a, double* quotient, double tolerance, int budget, double* rOut,
                      double* sOut)
{
    if (n < 3)
        return 0;
    RootWork& w = rootWork();
    double* b = sized(w.b, n).data();
    double* c = sized(w.c, n).data();
    double r = 2.0, s = -1.0;
    for (int pass = 1; pass <= budget; ++pass) {
        b[0] = a[0];
        b[1] = a[1] + r * b[0];
        for (int k = 2; k <= n; ++k)
            b[k] = a[k] + r * b[k - 1] + s * b[k - 2];
        c[0] = b[0];
        c[1] = b[1] + r * c[0];
        for (int k = 2; k < n; ++k)
            c[k] = b[k] + r * c[k - 1] + s * c[k - 2];
        const double det = c[n - 2] * c[n - 2] - c[n - 1] * c[n - 3];
        const double dr = (-b[n - 1] * c[n - 2] + b[n] * c[n - 3]) / det;
        const double ds = (-b[n] * c[n - 2] + b[n - 1] * c[n - 1]) / det;
        const double sOld = s;
        r += dr;
        s += ds;
        if (pass >= 2 && std::fabs(dr) / std::max(1.0, std::fabs(r)) < tolerance &&
            std::fabs(ds) / std::max(std::fabs(s), std::fabs(sOld)) < tolerance) {
            std::copy(b, b + n - 1, quotient);
            *rOut = r;
            *sOut = s;
            return 1;
        }
    }
    return 0;
}

namespace
{

// One pass of the quadratic search on the shifted polynomial w[0 .. n]: the quotient by
// x^2 - r x - s normalised to a constant term of 1 is matched against the low-order end of w.
void searchPass(int n, const double* w, double* b, double r, double s, double* rNew, double* sNew)
{
    b[0] = w[0];
    b[1] = w[0] * r + w[1];
    for (int k = 2; k <= n - 2; ++k)
        b[k] = s * b[k - 2] + r * b[k - 1] + w[k];
    const double before = n >= 4 ? b[n - 4] : 0.0; // a linear quotient has no x^2 term
    const double u = b[n - 3] / b[n - 2];
    const double v = before / b[n - 2];
    const double t = w[n - 1] - u * w[n];
    const double d = w[n - 2] - u * t - v * w[n];
    *rNew = -t / d;
    *sNew = -w[n] / d;
}

// The change of an estimate as the search measures it: a negative difference is replaced by
// -new - old, not by its magnitude. Intended; which shift converges first depends on it.
double searchChange(double estimate, double next)
{
    const double change = next - estimate;
    return change < 0.0 ? -next - estimate : change;
}

} // namespace

int CMathFunc::frwbkw(int n, const double* a, double* quotient, double* rOut, double* sOut, int budget,
                      double tolerance)
{
    if (n < 3)
        return 0;
    double* w = quotient;
    double* b = sized(rootWork().b, n).data();
    static constexpr double kShifts[] = {0.0, 0.5, 1.0, 1.5, 2.0};
    bool converged = false;
    double r = 2.0, s = -1.0, c = 0.0;
    for (const double shift : kShifts) {
        c = shift;
        std::copy(a, a + n + 1, w);
        for (int j = 0; j < n; ++j)
            for (int k = 1; k <= n - j; ++k)
                w[k] -= c * w[k - 1];
        r = 2.0;
        s = -1.0;
        for (int pass = 0; pass < budget && !converged; ++pass) {
            double rNew = 0.0, sNew = 0.0;
            searchPass(n, w, b, r, s, &rNew, &sNew);
            converged = searchChange(r, rNew) / std::max(std::fabs(r), std::fabs(rNew)) < tolerance &&
                        searchChange(s, sNew) / std::max(std::fabs(s), std::fabs(sNew)) < tolerance;
            r = rNew;
            s = sNew;
        }
        if (converged)
            break;
    }
    if (!converged)
        return 0;
    s = s + r * c - c * c;
    r = r - 2.0 * c;
    quotient[0] = a[0];
    quotient[1] = r * quotient[0] + a[1];
    for (int k = 2; k <= n - 1; ++k)
        quotient[k] = r * quotient[k - 1] + s * quotient[k - 2] + a[k];
    quotient[n] = s * quotient[n - 2] + a[n];
    *rOut = r;
    *sOut = s;
    return 1;
}

PolePair CMathFunc::cmpfb2(double p, double q, double sampleRate)
{
    const double perRadian = sampleRate / spectrum::kTwoPi;
    PolePair out;
    const double h = p / 2.0;
    const double d = h * h - q;
    if (d < 0.0) {
        out.zreal = -h;
        out.zimag = std::sqrt(-d);
        // A pair on the imaginary axis reports pi/2 Hz, not a quarter of the sample rate: kept as
        // it is, callers see such pairs only for degenerate polynomials.
        out.tfreq = h != 0.0 ? std::atan2(out.zimag, -h) * perRadian : M_PI / 2.0;
        out.tbandw = -perRadian * std::log(q);
    } else {
        const double m = std::sqrt(d) + std::fabs(h);
        if (p >= 0.0) {
            out.tfreq = 0.0;
            out.zreal = m;
        } else {
            out.tfreq = sampleRate / 2.0;
            out.zreal = -m;
        }
        out.zimag = 0.0;
        out.tbandw = -perRadian * std::log(m * m);
    }
    return out;
}

double CMathFunc::rvalue(int n, const double* a, double x)
{
    double value = a[0];
    for (int i = 1; i <= n; ++i)
        value = value * x + a[i];
    return value;
}

double CMathFunc::arccos(double x)
{
    if (x == 1.0)
        return 0.0;
    return M_PI / 2.0 - std::atan(x / std::sqrt(1.0 - x * x));
}
