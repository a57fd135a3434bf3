# Makes the comment at the head of a header, down to its guard, what Doxygen says of the file.
1s|^//|/// \\file\n///|
2,/^#/s|^//|///|
