#pragma once

#include <QString>

/// The shortest text that reads back as the same number, in plain notation unless it is very small or very
/// large
/// ("0.1", "100000", "1e+20"); "inf", "-inf" and "nan" otherwise. Independent of the locale.
QString KNFloatText(double value);
QString KNFloatText(float value);

/// Size in bytes of the buffer for KNWriteFloat().
constexpr int KNLongestFloatText = 64;
/// Writes the same text in ASCII, without a NUL, to a buffer of KNLongestFloatText bytes. Returns the end of
/// the text.
char *KNWriteFloat(char *to, double value);
char *KNWriteFloat(char *to, float value);
