#pragma once
// TimedParameters: parameter values at time points, as other tools keep them (a table whose
// rows are times, not frames, and values held constant for the whole utterance), read from a
// file and not yet put on a document's frames. Rows are this system's parameter rows (0..47);
// times are milliseconds. A plain value, any thread.
#include <string>
#include <vector>

struct TimedParameters {
    struct Constant {
        int row = 0;
        double value = 0.0;
    };
    std::vector<Constant> constants;
    std::vector<int> columnRows;             // the row of each varied column
    std::vector<double> times;               // one per time point, never decreasing
    std::vector<std::vector<double>> values; // values[point][column]
    double lengthMS = -1.0;                  // the length the file states; below 0 when it states none
    int intervalMS = 0;                      // the frame length the file states; 0 when it states none
    std::vector<std::string> unknownNames;   // names with no row here, in the order met
};

// Where reading an interchange file stopped: the line (1-based; 0 when not one line) and why.
struct InterchangeError {
    int line = 0;
    std::string what;
    // "line N: WHAT" (or "WHAT").
    std::string where() const { return line > 0 ? "line " + std::to_string(line) + ": " + what : what; }
};
