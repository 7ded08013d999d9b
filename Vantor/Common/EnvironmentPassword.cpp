#include "Common/EnvironmentPassword.h"

#include <cstdlib>
#include <cstring>

std::optional<QString> TakeEnvironmentPassword()
{
    constexpr char Variable[] = "VANTOR_PASSWORD";
    char *const value = std::getenv(Variable);
    if (!value)
        return std::nullopt;
    const QString password = QString::fromLocal8Bit(value);
    // unsetenv() does not erase the bytes, which the kernel shows to other processes of this user.
    explicit_bzero(value, std::strlen(value));
    unsetenv(Variable);
    return password;
}
