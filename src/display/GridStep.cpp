#include "display/GridStep.h"

#include <cmath>
#include <initializer_list>

double gridStep(double range, double pixels, double step, double minimumGap)
{
    if (!(range > 0.0) || !(pixels > 0.0) || !std::isfinite(range))
        return 0.0;
    if (step > 0.0 && std::isfinite(step) && step * pixels / range >= minimumGap)
        return step;
    // The smallest 1-2-5 step whose lines are at least minimumGap apart.
    const double least = range * minimumGap / pixels;
    double decade = std::pow(10.0, std::floor(std::log10(least)));
    for (;;) {
        for (double factor : {1.0, 2.0, 5.0})
            if (factor * decade >= least)
                return factor * decade;
        decade *= 10.0;
    }
}
