#pragma once

#include <QByteArray>

#include "state/sign_off.h"

namespace qv5123 {

/// The report as a PDF of A4 pages. May be called on any thread.
QByteArray sign_off_pdf(const SignOff& report);

}  // namespace qv5123
