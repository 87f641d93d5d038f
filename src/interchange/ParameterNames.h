#pragma once
// The names other tools give this system's parameter rows. Any thread.
#include <string_view>
#include <vector>

// The row that the varied-parameter layout's name `name` means (case does not matter), or -1
// when it has none here. The layout's own names (f0 in tenths of Hz as here, av, ah, af, tl,
// f1..f6, b1..b6, a2f..a6f, ab, b2f..b6f, fnp, bnp, fnz, bnz, anv) and the older names of the
// same parameters (a1..a6 for the parallel amplitudes, an for the nasal one) are known; names
// whose parameter differs here (oq in per cent of the period, for one) are not.
int klpNameRow(std::string_view name);
// The rows the varied-parameter layout holds, in the order an exported file lists them.
const std::vector<int>& klpRows();
// The layout's name of a row in klpRows().
std::string_view klpRowName(int row);
// The row whose name here is `name` (case does not matter), or -1.
int parameterRowNamed(std::string_view name);
