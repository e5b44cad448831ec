#pragma once

class QApplication;

/// The steps of start-up, in the order in which the program takes them.
namespace Startup {

/// Registers the images and translations that are compiled in.
void registerResources();

/// Lets Qt look for plug-ins only in the executable's folder and its "/plugins".
void setLibraryPaths();

/// Lets Qt write nothing about the user: its file dialog would keep the last folders in a file outside the catalogue.
void keepNoSettings();

/// German for Qt's own dialogs and buttons, German dates and numbers, and fonts in place of those that are missing.
void speakGerman(QApplication &application);

/// One font for all windows, boxes and tool tips, and boxes whose icons are the program's own. Of the pictures that the
/// style draws of its controls, anew for each form that opens, only few are kept.
void dress();

/// Makes "./Data", "./Data/Pictures" and in it "AuxFolder", "Folder001" and "Folder002" where they are missing.
/// A folder that cannot be made is not reported; copies into it fail later.
void makeDataFolders();

/// Opens the catalogue, and fills it with empty tables when its file did not exist before. False when it could not be
/// opened; the user has then been told the driver's reason.
[[nodiscard]] bool openCatalogue();

} // namespace Startup
