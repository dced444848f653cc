#pragma once

// The test classes of the editing executable, each run by the shared main.
int runSheetEditingTests(int argc, char** argv);
int runFilterBuilderTests(int argc, char** argv);
int runTransformDialogTests(int argc, char** argv);
int runEditingSaveTests(int argc, char** argv);
