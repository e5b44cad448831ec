#include "app/startpicture.h"

int randomPictureNumber(const QTime &time, int pictures)
{
    if (pictures < 1) {
        return 0;
    }
    const int milliseconds = time.msec() < 100 ? time.msec() + 100 : time.msec();
    const int seconds = time.second() < 10 ? time.second() + 10 : time.second();
    const int row = milliseconds * seconds % pictures;
    return row == 0 ? 1 : row;
}
