/// \file
/// The examples of docs/checks.md.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace OrvTest {

/// A file of an example.
struct ExampleFile
{
    QString name;
    QByteArray contents; ///< Of an image, nothing: its contents do not matter.
    bool isImage = false;
};

/// One code with the smallest files that show it.
struct CheckExample
{
    QString code;
    std::vector<ExampleFile> files; ///< Empty where no small file shows it.
    QString findings;               ///< What `orv check model.obj` prints.
    QString changes;                ///< What `orv fix model.obj -o fixed.obj` says it changes.
    std::vector<ExampleFile> fixed; ///< What that writes; empty where it changes nothing.

    /// Writes the files into a directory.
    void write(const QString &directory) const;
};

/// All examples, in the order of the page. Boxes of a kind that is not known fail the test.
std::vector<CheckExample> readChecksPage(const QString &fileName);

} // namespace OrvTest
