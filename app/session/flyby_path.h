#pragma once

#include <string>
#include <vector>

#include <QString>

#include "engine/flight/flyby_script.h"
#include "engine/params/params.h"

/// What the user is told of a script of a flight through space: there is no compiler for it.
inline constexpr const char* kNo3DFlights = "3D flight - not available in this version.";

/// The user's settings of every flyby.
struct FlybyOptions
{
    bool ongoingWiggle = true;  ///< frames without an amplitude of their own swing, too
    bool continuousLoop = true; ///< the wiggle of a loop is led on until it closes
};

/// The cameras that a script stands for.
struct FlybyPath
{
    std::vector<zre::FlybyCamera> cameras; ///< of the built-in flyby where the script has none
    std::vector<zre::ZRFlybyError> errors;
    bool builtIn = false;
    QString status; ///< for the user
};

/// `errors` of a compile at their lines of `script`: the compiler counts those of the script in
/// which drawn paths are written out as commands.
std::vector<zre::ZRFlybyError> errorsInSource(const std::string& script,
                                              std::vector<zre::ZRFlybyError> errors);

/// Compiles `script` for a picture of `width` by `height` pixels; an empty or failed one, and one
/// of a flight through space, gives the built-in push-in loop.
FlybyPath compileFlyby(const QString& script, const zre::ZRParams& params, int width, int height,
                       const FlybyOptions& options);
