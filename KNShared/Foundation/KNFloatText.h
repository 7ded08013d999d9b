#pragma once

#include <QString>

/// The shortest text that reads back as the same number, in plain notation unless it is very small or very
/// large
/// ("0.1", "100000", "1e+20"); "inf", "-inf" and "nan" otherwise. Independent of the locale.
QString KNFloatText(double value);
QString KNFloatText(float value);
