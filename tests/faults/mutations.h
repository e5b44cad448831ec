#pragma once

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

/// Damages and falsifies copies of the sample catalogue.
namespace Mutations {

/// Overwrites, cuts or swaps some bytes or pages of the file.
void spoilBytes(const QString &file, QRandomGenerator &random);

/// Runs one to four statements against the database `file` that leave it readable, but with what no program of ours
/// would write: ids beyond 32 bits, NULL, blobs, huge texts, no dates, foreign paths, views and triggers. `foreign` is
/// the absolute path of a file that must survive. Huge texts make a mutation slow, so they can be left out.
void falsifyRows(const QString &file, const QString &foreign, bool hugeTexts, QRandomGenerator &random);

/// Runs the statements against the database `file`, whatever each of them says.
void run(const QString &file, const QStringList &statements);

} // namespace Mutations
