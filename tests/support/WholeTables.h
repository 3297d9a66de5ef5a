#pragma once

namespace velmora::test {

/// Whether tables of combinations are tried whole, by `scripts/whole-tables`. Otherwise each choice
/// meets each of another kind at least once, which takes a third of the time.
bool wholeTables();

} // namespace velmora::test
