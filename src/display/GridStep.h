#pragma once
// The spacing of grid lines on every plot (analysis windows, data-entry views, pictures).
// Pure function; any thread.

// The step actually drawn for a range spread over `pixels`: `step` when it leaves at least
// `minimumGap` pixels between lines, else the smallest round step (1, 2 or 5 times a power of
// ten) that does. 0 for an empty or unusable range.
double gridStep(double range, double pixels, double step, double minimumGap);
