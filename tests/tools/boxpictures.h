#pragma once

class Album;

/// The boxes that appear by themselves, and the progress dialog.
void addBoxes(Album &album);

/// The boxes, questions and pop-ups that the forms open, called up as a user does, on a small catalogue of their own.
void addBoxesOfForms(Album &album);
