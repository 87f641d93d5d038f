#include "analysis/CMathFunc.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

namespace
{

constexpr double kRate = 11025.0;

// The product of a quotient and x^2 - r x - s, compared with the polynomial it came from.
void expectFactorization(const std::vector<double>& a, const double* quotient, double r, double s)
{
    const int n = static_cast<int>(a.size()) - 1;
    std::vector<double> product(n + 1, 0.0);
    for (int i = 0; i <= n - 2; ++i) {
        product[i] += quotient[i];
        product[i + 1] -= r * quotient[i];
        product[i + 2] -= s * quotient[i];
    }
    for (int i = 0; i <= n; ++i)
        EXPECT_NEAR(product[i], a[i], 1e-3) << i; // the iterations stop at a relative step of 1e-4
}

} // namespace

TEST(Roots, ComplexPairsBecomeSortedFormants)
{
    CMathFunc math;
    // Given out of order; one pair too wide to be a formant.
    const std::vector<std::pair<double, double>> poles = {
        {2500.0, 150.0}, {700.0, 60.0}, {1200.0, 900.0}, {3400.0, 250.0}, {1100.0, 80.0}};
    const std::vector<double> poly = signals::polynomialOfPoles(poles, kRate);
    const RootRecord* rec = math.rootsub(10, 600.0, poly.data(), kRate);
    ASSERT_NE(rec, nullptr);
    EXPECT_EQ(rec->factorCount, 5);
    ASSERT_EQ(rec->formantCount, 4);
    const double frequencies[] = {700.0, 1100.0, 2500.0, 3400.0};
    const double bandwidths[] = {60.0, 80.0, 150.0, 250.0};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(rec->frequency[i], frequencies[i], 0.5) << i;
        EXPECT_NEAR(rec->bandwidth[i], bandwidths[i], 0.5) << i;
    }
    // The stored root of each factor lies on its pole circle.
    for (int i = 0; i < rec->factorCount; ++i)
        EXPECT_NEAR(rec->zreal[i] * rec->zreal[i] + rec->zimag[i] * rec->zimag[i], rec->q[i], 1e-9);
    // The polynomial handed in is not modified.
    EXPECT_EQ(poly, signals::polynomialOfPoles(poles, kRate));
}

TEST(Roots, RealRootsCloseAndDistantRootsAreFactoredOut)
{
    CMathFunc math;
    // Two close pairs plus real roots inside and outside the scanned interval.
    std::vector<double> poly =
        signals::polynomialOfPoles({{1000.0, 50.0}, {1030.0, 50.0}, {2400.0, 100.0}}, kRate);
    poly = signals::withRealRoot(poly, 0.9);
    poly = signals::withRealRoot(poly, -0.4);
    poly = signals::withRealRoot(poly, 3.0);
    const RootRecord* rec = math.rootsub(static_cast<int>(poly.size()) - 1, 600.0, poly.data(), kRate);
    ASSERT_NE(rec, nullptr);
    EXPECT_EQ(rec->factorCount, 3); // real roots are removed without a record entry
    const std::vector<double> found(rec->frequency, rec->frequency + rec->formantCount);
    ASSERT_EQ(found.size(), 3u);
    // Close pairs are ill-conditioned: the 1e-4 stopping rule leaves them a few Hz off.
    EXPECT_NEAR(found[0], 1000.0, 8.0);
    EXPECT_NEAR(found[1], 1030.0, 8.0);
    EXPECT_NEAR(found[2], 2400.0, 1.0);

    // The reciprocal scan returns the distant root itself, with a monic quotient.
    const std::vector<double> pair = signals::polynomialOfPoles({{800.0, 70.0}}, kRate);
    std::vector<double> cubic = signals::withRealRoot(pair, 3.0);
    double quotient[4] = {}, root = 0.0;
    ASSERT_EQ(math.rfactr(3, cubic.data(), quotient, &root, 1e-4), 1);
    EXPECT_NEAR(root, 3.0, 1e-3);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(quotient[i], pair[i], 1e-3) << i;
}

TEST(Roots, FactoringStrategiesEachRemoveATrueFactor)
{
    CMathFunc math;
    const std::vector<double> a =
        signals::polynomialOfPoles({{600.0, 80.0}, {1700.0, 120.0}, {2900.0, 200.0}}, kRate);
    std::vector<double> quotient(a.size(), 0.0);
    double r = 0.0, s = 0.0;

    // No real roots: factor falls through to a quadratic factor.
    ASSERT_EQ(math.factor(6, a.data(), quotient.data(), &r, &s), 2);
    expectFactorization(a, quotient.data(), r, s);

    ASSERT_EQ(math.barstw(6, a.data(), quotient.data(), 1e-4, 100, &r, &s), 1);
    expectFactorization(a, quotient.data(), r, s);

    // The fallback search on a cubic with one real root and one pair.
    const std::vector<double> cubic =
        signals::withRealRoot(signals::polynomialOfPoles({{1500.0, 90.0}}, kRate), 0.5);
    std::vector<double> q3(4, 0.0);
    ASSERT_EQ(math.frwbkw(3, cubic.data(), q3.data(), &r, &s, 100, 1e-4), 1);
    expectFactorization(cubic, q3.data(), r, s);

    // Degrees the strategies do not handle.
    EXPECT_EQ(math.barstw(2, a.data(), quotient.data(), 1e-4, 100, &r, &s), 0);
    EXPECT_EQ(math.frwbkw(2, a.data(), quotient.data(), &r, &s, 100, 1e-4), 0);
    // A polynomial without sign changes in either scan has no real root to give.
    const std::vector<double> noReal = signals::polynomialOfPoles({{900.0, 100.0}}, kRate);
    double root = 0.0;
    EXPECT_EQ(math.rfactr(2, noReal.data(), quotient.data(), &root, 1e-4), 0);
}

TEST(Roots, ImaginaryAxisRealPairsAndDegreesOutsideTheRecords)
{
    CMathFunc math;
    const double perRadian = kRate / 6.2831853071796;
    // A pair on the imaginary axis reports pi/2 Hz, not a quarter of the rate (kept as found).
    const double imaginary[] = {1.0, 0.0, 0.81};
    const RootRecord* rec = math.rootsub(2, 600.0, imaginary, kRate);
    ASSERT_NE(rec, nullptr);
    ASSERT_EQ(rec->formantCount, 1);
    EXPECT_DOUBLE_EQ(rec->frequency[0], M_PI / 2.0);
    EXPECT_NEAR(rec->bandwidth[0], -perRadian * std::log(0.81), 1e-9);

    // Two real roots: p < 0 reports half the rate, p >= 0 reports 0 Hz; the larger root is kept.
    const double m = std::sqrt(0.75 * 0.75 - 0.5) + 0.75;
    PolePair pp = math.cmpfb2(-1.5, 0.5, kRate);
    EXPECT_EQ(pp.tfreq, kRate / 2.0);
    EXPECT_EQ(pp.zimag, 0.0);
    EXPECT_NEAR(pp.zreal, -m, 1e-12);
    EXPECT_NEAR(pp.tbandw, -perRadian * std::log(m * m), 1e-9);
    pp = math.cmpfb2(1.5, 0.5, kRate);
    EXPECT_EQ(pp.tfreq, 0.0);
    EXPECT_NEAR(pp.zreal, m, 1e-12);

    // Degree 401 does not fit the records; degree 1 has no pair to give.
    std::vector<double> poly(402, 0.0);
    poly[0] = 1.0;
    EXPECT_EQ(math.rootsub(401, 600.0, poly.data(), kRate), nullptr);
    const RootRecord* empty = math.rootsub(1, 600.0, poly.data(), kRate);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->factorCount, 0);
    EXPECT_EQ(empty->formantCount, 0);
}
