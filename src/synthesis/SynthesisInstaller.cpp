// Compiled into every program that links tessaphon_synthesis (an interface source of the
// library, see CMakeLists.txt): before main() runs, the Klatt driver becomes what
// MyDocument::Synthesize runs, so that no program can forget to install it.
#include "synthesis/Synthesize.h"

namespace
{
[[maybe_unused]] const bool g_synthesisInstalled = (installSynthesis(), true);
} // namespace
