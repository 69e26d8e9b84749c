#pragma once
#include <QColor>
#include <QImage>

// The main window's backdrop: 699 by 239 pixels, 24 bits a pixel.
QImage make_backdrop();
// The colour around the backdrop when the window is larger.
QColor backdrop_surround();
// The console's logo: a trumpet curve over the name, size by size pixels.
QImage make_logo(int size);
