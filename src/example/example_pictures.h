// Pictures of the example tables: drawn, not photographed, and without letters, so that they are
// the same whatever fonts the machine has.
#pragma once

#include "example/example_tables.h"

#include <QtGui/QImage>

#include <cstddef>

namespace example {

// The playfield from above; `number` (from 0) chooses how its things stand.
QImage DrawPlayfield(const ExampleTable& table, std::size_t number);
// The advertisement.
QImage DrawFlyer(const ExampleTable& table, std::size_t number);

}  // namespace example
