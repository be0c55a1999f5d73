#pragma once
// The main() of every QtTest program: like the GoogleTest programs, the environment moves into a
// scratch folder before the application object exists (so no test reaches the real home, temp
// folder, trash, Wine prefix or browser profiles), and the offscreen platform is used unless the
// caller chose another. Use it as `SCOURMILL_QTEST_MAIN(MyTest)` at the end of the test file.

#include "tests/support/Scratch.h"

#include <QApplication>
#include <QTest>

namespace testsupport {

/// The control called `name` of type T inside `window`; ends the test program when there is none,
/// since every later step would be meaningless.
template <class T>
T* child(QWidget& window, const char* name) {
    auto* found = window.findChild<T*>(name);
    if (!found)
        qFatal("no control named %s", name);
    return found;
}

/// Runs the QtTest object `T` in a QApplication on the offscreen platform inside the scratch
/// environment; removes the scratch folder afterwards.
template <class T>
int runQtTest(int argc, char** argv) {
    enterScratchEnvironment();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int rc = 0;
    {
        QApplication app(argc, argv);
        T test;
        rc = QTest::qExec(&test, argc, argv);
    }
    leaveScratchEnvironment();
    return rc;
}

} // namespace testsupport

#define SCOURMILL_QTEST_MAIN(TestClass)                                                                               \
    int main(int argc, char** argv) { return testsupport::runQtTest<TestClass>(argc, argv); }
