#pragma once

/// Gives the learned models the files that the user has configured, or those beside the program.
void useConfiguredModels();
