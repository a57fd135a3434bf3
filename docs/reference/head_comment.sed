# Makes the comment at the head of a header, down to its guard, what Doxygen says of the file.
/^#/,$!s|^//|///|
1s|^///|/// \\file\n///|
