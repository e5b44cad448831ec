#pragma once

class QApplication;

/// Starts the program on the working folder and runs it; returns the exit code. The resources must be registered and
/// the application object be built. When the catalogue cannot be opened, the user is told so and the event loop runs
/// without a window: the program then does not end by itself.
int runProgram(QApplication &application);
