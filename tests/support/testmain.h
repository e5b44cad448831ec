#pragma once

class QApplication;

/// Gives a test program the German texts that the real program has.
void prepareTestApplication(QApplication &application);

#define BAHNITO_TEST_MAIN(TestClass)                                                                                   \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QApplication application(argc, argv);                                                                          \
        prepareTestApplication(application);                                                                           \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
