#!/usr/bin/env python3
# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
"""qvxcs.py FOLDER [USER]: the library from Python, by ctypes alone.

Shows a typed value, growable text, a list that Python compares, a setting, a log entry and rights.
The setting and the log are files of FOLDER. The exit status is 0, or 2 when something failed.
"""
import ctypes
import os
import sys
from ctypes import POINTER, byref, c_char_p, c_int32, c_uint16, c_uint32, c_void_p

QVX_TYPE_U32, QVX_TYPE_TYPED_VALUE = 5, 25
QVX_BASE_HEXADECIMAL = 16
QVX_INI_U32, QVX_LOCK_WAIT, QVX_LOG_INFORMATION = 5, 1, 4
STATUS_NAMES = {
    0x0000: "SM_STATUS_SUCCESS", 0x0002: "SM_STATUS_BAD_ARGUMENT", 0x0003: "SM_STATUS_TIMEOUT",
    0x0007: "SM_STATUS_FILE_OPEN_FAILED", 0x000B: "SM_STATUS_LOCK_FAILED",
    0x000F: "SM_STATUS_SIZE_REQUIRED", 0x0010: "SM_STATUS_BUFFER_TOO_SMALL",
    0x0011: "SM_STATUS_NOT_LOADED", 0x0013: "SM_STATUS_WRITE_FAILED",
    0x0100: "SM_STATUS_FAILURE", 0x0101: "SM_STATUS_BAD_DATA",
    0x0102: "SM_STATUS_FILE_CREATE_FAILED", 0x0104: "SM_STATUS_FILE_OPEN_ERROR",
    0x0105: "SM_STATUS_BAD_SECTION_HEADER", 0x0106: "SM_STATUS_SECTION_NOT_FOUND",
    0x0107: "SM_STATUS_KEY_NOT_FOUND", 0x0108: "SM_STATUS_DATA_TOO_LARGE",
    0x010E: "SM_STATUS_FILE_DELETE_FAILED", 0x010F: "SM_STATUS_INVALID_PARAMETER",
    0x0110: "SM_STATUS_NO_MEMORY", 0x2018: "SM_STATUS_IP_INVALID_PARAMETER",
    0xFFFFFFFF: "QVX_FAILED"}
# After these errno says what the system refused, if it was 0 before the call.
WITH_REASON = {
    "SM_STATUS_FILE_OPEN_FAILED", "SM_STATUS_FILE_OPEN_ERROR", "SM_STATUS_FILE_CREATE_FAILED",
    "SM_STATUS_FILE_DELETE_FAILED", "SM_STATUS_WRITE_FAILED", "SM_STATUS_LOCK_FAILED",
    "SM_STATUS_FAILURE", "QVX_FAILED"}


class TypedValue(ctypes.Structure):
    """PXTTypedValue"""
    _fields_ = [("type", c_int32), ("format", c_int32), ("value", c_void_p)]


class GrowableText(ctypes.Structure):
    """SSAStr"""
    _fields_ = [("text", c_char_p), ("capacity", c_uint32), ("length", c_uint32)]


class Entry(ctypes.Structure):
    """PXTDLListEntry"""
    _fields_ = [("next", c_void_p), ("previous", c_void_p), ("data", c_void_p)]


Compare = ctypes.CFUNCTYPE(c_int32, POINTER(Entry), POINTER(Entry))


class Failure(Exception):
    """A failed call: what it was to do, the status's name, the system's reason."""

    def __init__(self, words, status):
        name = STATUS_NAMES.get(status, hex(status))
        error = ctypes.get_errno() if name in WITH_REASON else 0
        super().__init__(f"{words} ({name}{': ' + os.strerror(error) if error else ''})")


def declare(name, result, *arguments):
    """Without a declaration ctypes passes and returns a C int: pointers would be cut to 32 bits."""
    function = getattr(library, name)
    function.restype, function.argtypes = result, arguments


def call(words, function, *arguments):
    """Calls what answers with a status; `words` say that it failed."""
    ctypes.set_errno(0)
    status = function(*arguments)
    if status != 0:
        raise Failure(words, status)


def owned(pointer, free):
    """The bytes of a text that the library allocated. A c_char_p result would lose the pointer."""
    if not pointer:
        raise MemoryError
    text = ctypes.string_at(pointer)
    free(pointer)
    return text


def load():
    global library
    library = ctypes.CDLL("libqvxcs.so.1", use_errno=True)
    declare("PXTFreeMem", None, c_void_p)
    declare("PXTXAllocBuf", c_void_p, c_uint32, c_uint16)
    declare("PXTXBufCatNode", c_uint32, c_void_p, c_char_p, c_char_p, c_int32, c_void_p)
    declare("PXTXFreeBufGetContent", c_void_p, c_void_p)
    declare("PXTXFreeBufContent", None, c_void_p)
    declare("PXTSSAStrAlloc", c_char_p, POINTER(GrowableText), c_uint32)
    declare("PXTSSAStrCatAStr", c_char_p, POINTER(GrowableText), c_char_p)
    declare("PXTSSAStrFree", None, POINTER(GrowableText))
    declare("PXTDLListAlloc", c_void_p)
    declare("PXTDLListFree", None, c_void_p)
    declare("PXTDLListEntryAlloc", POINTER(Entry), c_uint32)
    declare("PXTDLListEntryFree", None, POINTER(Entry))
    declare("PXTDLListInsertOrdered", c_uint32, c_void_p, POINTER(Entry), Compare)
    declare("PXTDLListRemoveEntryAtHead", POINTER(Entry), c_void_p)
    declare("PXTWriteINIPathFileValue", c_uint32, c_char_p, c_char_p, c_int32, c_void_p, c_int32,
            c_char_p, c_uint16)
    declare("PXTReadINIPathFileValue", c_uint32, c_char_p, c_char_p, c_int32, c_void_p,
            POINTER(c_uint32), c_void_p, c_uint32, c_char_p, c_uint16)
    declare("PXTAppendToXMLLog", c_uint32, c_char_p, c_uint16, c_uint32, c_char_p, c_char_p,
            c_char_p, c_void_p, c_uint32, c_uint32)
    declare("PXTCmdGetXMLLogContent", c_void_p, c_char_p)
    declare("PXTOpenRolemapFile", c_uint32)
    declare("PXTGetRightsUsingRolemap", c_uint32)
    declare("PXTGetProcessUser", c_void_p)
    declare("PXTGetProcessRights", c_uint32)
    declare("PXTAuthorizeUser", c_uint32, POINTER(c_uint16), POINTER(c_uint16))


def units(text):
    """16-bit text with its 0 unit. Python's own wide text has 32 bits."""
    encoded = (text + "\0").encode("utf-16-le")
    return (c_uint16 * (len(encoded) // 2)).from_buffer_copy(encoded)


def show_typed_value(number):
    """A number that the XML builder writes in base 16."""
    flags = c_uint32(number)
    value = TypedValue(QVX_TYPE_U32, QVX_BASE_HEXADECIMAL, ctypes.addressof(flags))
    buffer = library.PXTXAllocBuf(256, 0)
    if not buffer:
        raise MemoryError
    try:
        call("the XML cannot be built", library.PXTXBufCatNode, buffer, b"Flags", None,
             QVX_TYPE_TYPED_VALUE, byref(value))
    finally:
        text = owned(library.PXTXFreeBufGetContent(buffer), library.PXTXFreeBufContent)
    print(text.decode())


def show_growable_text(*parts):
    """The record is ours, and its text the library's until it is freed."""
    line = GrowableText()
    if library.PXTSSAStrAlloc(byref(line), 8) is None:
        raise MemoryError
    for part in parts:
        library.PXTSSAStrCatAStr(byref(line), part.encode())
    print(f"{line.text.decode()} ({line.length} bytes)")
    library.PXTSSAStrFree(byref(line))


def name_of(entry):
    return ctypes.string_at(entry.contents.data)


@Compare
def by_name(new, present):
    """Kept in a global name: the library calls it for as long as the list is in use."""
    return (name_of(new) > name_of(present)) - (name_of(new) < name_of(present))


def show_list(*names):
    """Entries that the library allocates, in the order that Python gives them."""
    names_list = library.PXTDLListAlloc()
    if not names_list:
        raise MemoryError
    for name in names:
        payload = name.encode() + b"\0"
        entry = library.PXTDLListEntryAlloc(len(payload))
        if not entry:
            raise MemoryError
        ctypes.memmove(entry.contents.data, payload, len(payload))
        call("no order", library.PXTDLListInsertOrdered, names_list, entry, by_name)
    ordered = []
    while entry := library.PXTDLListRemoveEntryAtHead(names_list):
        ordered.append(name_of(entry).decode())
        library.PXTDLListEntryFree(entry)
    print(*ordered)
    library.PXTDLListFree(names_list)


def show_setting(path, seconds):
    value, read, size = c_uint32(seconds), c_uint32(), c_uint32(ctypes.sizeof(c_uint32))
    call("the setting cannot be written", library.PXTWriteINIPathFileValue, b"poll", b"seconds",
         QVX_INI_U32, byref(value), ctypes.sizeof(value), path, QVX_LOCK_WAIT)
    call("the setting cannot be read", library.PXTReadINIPathFileValue, b"poll", b"seconds",
         QVX_INI_U32, byref(read), byref(size), None, 0, path, QVX_LOCK_WAIT)
    print(f"seconds = {read.value}")


def show_log(path, text):
    call("the log cannot be written", library.PXTAppendToXMLLog, path, QVX_LOG_INFORMATION, 7,
         b"ada", b"qvxcs.py", text.encode(), None, 0, 131072)
    content = owned(library.PXTCmdGetXMLLogContent(path), library.PXTFreeMem)
    print("logged" if text.encode() in content else "not logged")


def show_rights(user):
    if user is None:
        own = owned(library.PXTGetProcessUser(), library.PXTFreeMem)
        print(f"{own.decode()}: 0x{library.PXTGetProcessRights():x}")
    else:
        library.PXTOpenRolemapFile()  # opens the role map;
        library.PXTGetRightsUsingRolemap()  # reads it, before the first question about a user
        print(f"{user}: 0x{library.PXTAuthorizeUser(None, units(user)):x}")


def main():
    if len(sys.argv) not in (2, 3):
        print("usage: qvxcs.py FOLDER [USER]", file=sys.stderr)
        return 2
    folder = os.fsencode(sys.argv[1])
    try:
        load()
        show_typed_value(31)
        show_growable_text("disk 0:3", " is full")
        show_list("pear", "apple", "fig")
        show_setting(folder + b"/monitor.ini", 15)
        show_log(folder + b"/events.xml", "Fan 2 is slow")
        show_rights(sys.argv[2] if len(sys.argv) == 3 else None)
    except (Failure, MemoryError, OSError) as failure:
        sys.stdout.flush()  # where both go to one file, the error comes last
        print(f"qvxcs.py: {failure or 'no memory'}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
