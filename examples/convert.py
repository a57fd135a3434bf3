#!/usr/bin/env python3
"""Converts a WAV file into an AIFF file, or an AIFF file into a WAV file:
    convert.py INPUT OUTPUT
"""
import sys
from ctypes import (CDLL, CFUNCTYPE, POINTER, Structure, byref, c_char, c_char_p, c_int, c_size_t,
                    c_uint32, c_uint64, c_void_p, sizeof, string_at)


class Sized(Structure):
    """A struct of corvana.h, which starts with its size."""

    def __init__(self):
        super().__init__(struct_size=sizeof(self))


class Error(Sized):
    _fields_ = [("struct_size", c_size_t), ("code", c_char_p), ("text", c_char * 256)]


class PlanInfo(Sized):
    _fields_ = [("struct_size", c_size_t), ("format", c_uint32), ("sample_rate", c_uint32),
                ("output_size", c_uint64), ("frames", c_uint64), ("warning_count", c_uint64),
                ("summary", c_char_p), ("summary_size", c_size_t)]


class Warning(Sized):
    _fields_ = [("struct_size", c_size_t), ("code", c_char_p), ("text", c_char_p),
                ("text_size", c_size_t)]


Write = CFUNCTYPE(c_int, c_void_p, c_void_p, c_size_t)

corvana = CDLL("libcorvana.so.1")
corvana.corvana_plan_make.argtypes = [c_char_p, c_size_t, POINTER(c_void_p), POINTER(Error)]
corvana.corvana_plan_free.argtypes = [c_void_p]
corvana.corvana_plan_free.restype = None
corvana.corvana_plan_get_info.argtypes = [c_void_p, POINTER(PlanInfo)]
corvana.corvana_plan_get_warning.argtypes = [c_void_p, c_size_t, POINTER(Warning)]
corvana.corvana_plan_carry_out_to.argtypes = [c_void_p, c_char_p, c_size_t, Write, c_void_p,
                                              POINTER(Error)]


def convert(content, output):
    """Writes what becomes of a file's content to a binary stream; gives the lines of a report."""
    error = Error()
    plan = c_void_p()
    if corvana.corvana_plan_make(content, len(content), byref(plan), byref(error)):
        raise ValueError(error.text.decode())

    failures = []

    @Write
    def write(_user, data, size):
        try:
            output.write(string_at(data, size))
        except BaseException as failure:  # none may get out
            failures.append(failure)
        return len(failures)  # 0 goes on

    try:
        if corvana.corvana_plan_carry_out_to(plan, content, len(content), write, None,
                                             byref(error)):
            raise failures[0] if failures else ValueError(error.text.decode())
        info = PlanInfo()
        corvana.corvana_plan_get_info(plan, byref(info))
        report = [info.summary.decode()]
        warning = Warning()
        for index in range(info.warning_count):
            corvana.corvana_plan_get_warning(plan, index, byref(warning))
            report.append(warning.text.decode())
        return report
    finally:
        corvana.corvana_plan_free(plan)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as file:
        content = file.read()
    try:
        with open(sys.argv[2], "wb") as file:
            print("\n".join(convert(content, file)))
    except (OSError, ValueError) as failure:
        sys.exit(f"{sys.argv[1]}: {failure}")
