#include "search/clock.h"

#include <utility>

namespace {

std::function<QDateTime()> &source()
{
    static std::function<QDateTime()> current;
    return current;
}

} // namespace

QDateTime Clock::now()
{
    return source() ? source()() : QDateTime::currentDateTime();
}

void Clock::setSource(std::function<QDateTime()> newSource)
{
    source() = std::move(newSource);
}
