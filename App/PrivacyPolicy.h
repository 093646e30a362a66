#pragma once

#include "Desktop/Application.h"

namespace kestrove {

/// Opens the privacy policy in the default browser: the page that is installed with the program,
/// or lies beside it where it was built. Main thread.
void openPrivacyPolicy(Application& application);

} // namespace kestrove
