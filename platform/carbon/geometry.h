#pragma once

// Carbon's rectangles, of single-precision numbers on every width.

struct HIPoint {
  float x;
  float y;
};

struct HISize {
  float width;
  float height;
};

struct HIRect {
  HIPoint origin;
  HISize size;
};
