#include "model/media_info.h"

#include <array>
#include <cmath>

namespace tavrelune {

double nearestStandardRate(double fps)
{
    static constexpr std::array<double, 8> rates{24000.0 / 1001, 24, 25, 30000.0 / 1001, 30, 50, 60000.0 / 1001, 60};
    double nearest = rates.front();
    for (const double rate : rates)
        if (std::abs(rate - fps) < std::abs(nearest - fps))
            nearest = rate;
    return nearest;
}

}  // namespace tavrelune
