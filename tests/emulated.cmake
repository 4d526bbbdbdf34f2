# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# The tests that cannot run under an emulator, with the reason. The user mode of qemu passes system
# calls on to the kernel one by one and lacks these.

# No process is traced: these stop, watch, count or kill a child at its system calls.
set(QVX_NOT_EMULATED CommandLog.SizeOfAMissingLogIsReadUnlocked FileRights.Of*
    IniWriter.ReplacingAKeyTakesAtMost18SystemCalls Kill.* LogCalls.* LogKill.* LogTorn.A*
    LogTorn.C* LogTorn.S* LogTorn.T* LogTorn.W* Module.TheMaximumIsReadLastInTwoHolds*
    XmlLog.NobodyEverHasMoreRights* XmlLog.WriterKilled*)

# No system call is filtered: in these the kernel refuses one.
list(APPEND QVX_NOT_EMULATED IniSectionTest.IsAddedInPlaceWhere* IniSectionTest.IsNotAddedWhere*
     IniSectionTest.IsTakenBackThroughItsDescriptor IniSectionTest.OfAMissingFileGoesThroughACopyToo
     IniSectionTest.ThatIsAppendedButNotFlushed* IniSectionTest.ThatIsLostOnClose*
     KeyValueReader.FileThatCannotBeReadToItsEndIsNull LogContent.AnOpenWithoutMemoryGivesNull
     LogFault.A* StreamFault.ACopyThatIsLost* StreamFault.AFileThatDoesNotTell*
     StreamFault.AFileWhoseKind* StreamFault.ASectionThatIsLost* StreamFault.ATextThatIsLost*)

list(JOIN QVX_NOT_EMULATED ":" not_emulated)
set(QVX_EMULATED_TESTS TEST_FILTER "-${not_emulated}")
