/// \file
/// Findings while they are being counted.
#pragma once

#include "FindingCodes.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtGui/QVector3D>

#include <deque>
#include <tuple>
#include <vector>

namespace Halvard::Orv::Checking {

/// All occurrences of one finding. Its texts are made when all is counted.
struct Tally
{
    Code code = Code::NotAnOBJ;
    int file = 0; ///< In FindingTable::files(): 0 is the model.
    QString subject;
    FindingSeverity severity = FindingSeverity::Hint;
    bool isFixable = false;
    qint64 line = 0;
    qint64 count = 0;
    qint64 faces = 0;
    QVector<QVector3D> corners;
    /// What the message of the code wants to know beside the subject, of the first occurrence.
    QString detail;
    /// Whether it is about a file that must not be looked at.
    bool isRefused = false;
    /// Whether it stands for many subjects, beyond those that are told one by one.
    bool isOfMany = false;

    /// Counts an occurrence; the first one in the file is the one that is told.
    /// \return whether it is the first so far.
    bool add(qint64 atLine, qint64 occurrences = 1);
};

/// The findings of one model by code, file and subject.
///
/// A file may hold millions of names, and a finding takes more memory than a line: beyond
/// MostSubjects of a code all further ones share a tally.
class FindingTable
{
public:
    static constexpr int MostSubjects = 1000;

    /// \param model its name, which is file 0.
    explicit FindingTable(const QString &model) : _files(model) {}

    /// Another file that findings may lie in.
    /// \return its number.
    int addFile(const QString &name);
    const QStringList &files() const { return _files; }

    /// The tally of a finding, which is made where there is none yet. Stays valid.
    Tally &at(Code code, const QString &subject = QString(), int file = 0);
    /// The tally, or null where there is none.
    Tally *find(Code code, const QString &subject = QString(), int file = 0);
    /// All tallies of a code, in the order in which they were made.
    std::vector<Tally *> all(Code code);
    /// Takes a finding out again.
    void remove(Code code, const QString &subject, int file = 0);

    /// All findings with an occurrence, with their texts, sorted.
    QVector<Finding> findings() const;

private:
    Tally &make(Code code, int file);

    struct Key
    {
        Code code;
        int file;
        QString subject;

        bool operator<(const Key &other) const
        {
            return std::tie(code, file, subject) < std::tie(other.code, other.file, other.subject);
        }
    };

    QStringList _files;
    QMap<Key, Tally *> _byKey; // ordered as NameSet is: subjects are names from a file
    int _subjects[CodeCount] = {};
    Tally *_ofMany[CodeCount] = {};
    std::deque<Tally> _tallies;
};

} // namespace Halvard::Orv::Checking
