#pragma once

#include <QByteArray>

#include "state/sign_off.h"

class QTextDocument;

namespace qv5123 {

/// The report as a PDF of A4 pages. May be called on any thread.
QByteArray sign_off_pdf(const SignOff& report);

/// Begins a new page with every heading of a document with pages whose text would begin only on the next one:
/// such documents know no other way to keep the two together.
void keep_headings(QTextDocument& document);

}  // namespace qv5123
