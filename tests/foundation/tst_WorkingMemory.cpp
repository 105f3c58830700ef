// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/WorkingMemory.h"

#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <sys/mman.h>

using namespace tovek;

namespace {

constexpr qsizetype fileBytes = 4 << 20;

/// Kilobytes of the mapping that are in this process's memory.
long residentKilobytes(const void *mapping)
{
    QFile maps(QStringLiteral("/proc/self/smaps"));
    if (!maps.open(QFile::ReadOnly))
        return -1;
    const QByteArray head = QByteArray::number(quintptr(mapping), 16) + '-';
    bool isFound = false;
    for (const QByteArray &line : maps.readAll().split('\n')) {
        isFound = isFound || line.startsWith(head);
        if (isFound && line.startsWith("Rss:"))
            return line.simplified().split(' ').at(1).toLong();
    }
    return -1;
}

} // namespace

class TestWorkingMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        m_file = std::make_unique<QTemporaryFile>();
        QVERIFY(m_file->open());
        m_file->write(QByteArray(fileBytes, 'a'));
        QVERIFY(m_file->flush());
        m_bytes = static_cast<char *>(
            mmap(nullptr, fileBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE, m_file->handle(), 0));
        QVERIFY(m_bytes != MAP_FAILED);
    }
    void cleanup() { munmap(m_bytes, fileBytes); }

    void dropsWhatIsInAFileAnyway()
    {
        protect();
        QCOMPARE(QByteArray(m_bytes, fileBytes), QByteArray(fileBytes, 'a'));
        QCOMPARE(residentKilobytes(m_bytes), long(fileBytes / 1024));
        m_memory.release();
        QCOMPARE(residentKilobytes(m_bytes), 0L);
        QCOMPARE(QByteArray(m_bytes, fileBytes), QByteArray(fileBytes, 'a'));
    }
    void takesBackWhatItDropped()
    {
        protect();
        const qsizetype used = fileBytes / 2;
        if (madvise(m_bytes, size_t(used), MADV_POPULATE_READ) != 0)
            QSKIP("The kernel (5.14 and later can) does not bring in pages ahead of their use");
        QCOMPARE(QByteArray(m_bytes, used), QByteArray(used, 'a'));
        const long before = residentKilobytes(m_bytes);
        QVERIFY(before >= used / 1024);
        m_memory.release();
        m_memory.recall();
        QTRY_VERIFY(residentKilobytes(m_bytes) >= before);
        m_memory.release();
        m_memory.release(); // after a smaller piece of work
        m_memory.recall();
        QTRY_VERIFY(residentKilobytes(m_bytes) >= before);
    }
    void keepsWhatWasChangedBeforeItWasProtected()
    {
        m_bytes[fileBytes / 2] = 'b';
        protect();
        m_memory.release();
        QCOMPARE(m_bytes[fileBytes / 2], 'b');
        QCOMPARE(m_bytes[0], 'a');
    }
    void keepsWhatMayStillBeChanged()
    {
        m_bytes[0] = 'b';
        m_memory.release();
        QCOMPARE(m_bytes[0], 'b');
    }

private:
    void protect() { QCOMPARE(mprotect(m_bytes, fileBytes, PROT_READ), 0); }

    WorkingMemory m_memory;
    std::unique_ptr<QTemporaryFile> m_file;
    char *m_bytes = nullptr;
};

QTEST_GUILESS_MAIN(TestWorkingMemory)
#include "tst_WorkingMemory.moc"
