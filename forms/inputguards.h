#pragma once

class QDateEdit;
class QLineEdit;

/// Guards against input that a user did not mean, for the fields of all forms.
namespace InputGuards {

/// Pasted line feeds and tabs become blanks, and those at the ends disappear: a number copied from a spreadsheet cell
/// brings a line feed along, and would count as another number.
void keepOnOneLine(QLineEdit *edit);

/// The wheel changes the date only while the field has the focus: a form that saves itself on closing must not
/// change because the pointer came to rest on a field.
void ignoreWheelWithoutFocus(QDateEdit *edit);

} // namespace InputGuards
