#pragma once

// The test classes of test_sheets, each run by its own function from the one main.
int runFrmDataGridTests(int argc, char** argv);
int runModGridStylesTests(int argc, char** argv);
int runFrmReportTests(int argc, char** argv);
