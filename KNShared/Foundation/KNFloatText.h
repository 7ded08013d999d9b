#pragma once

#include <QString>

/// The shortest text that reads back as the same number, in plain notation unless it is very small or very
/// large
/// ("0.1", "100000", "1e+20"); "inf", "-inf" and "nan" otherwise. Independent of the locale.
QString KNFloatText(double value);
QString KNFloatText(float value);

/// Bytes that KNWriteFloat() needs.
constexpr int KNLongestFloatText = 64;
/// Writes the same text in ASCII, without a NUL, into KNLongestFloatText bytes. Returns its end.
char *KNWriteFloat(char *to, double value);
char *KNWriteFloat(char *to, float value);
