# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
"""Turns Doxygen's XML of a description into lines of mdoc, for tools/man."""
import re
import xml.etree.ElementTree as ElementTree

# Names that begin a type and that no header of ours defines.
FOREIGN_TYPES = {"time_t", "pthread_t", "void", "const"}
# Words in running text that have their own macro.
KNOWN = re.compile(r"(\bNULL\b|\b(?:SM_STATUS|QVX|QVXCS)_[A-Z0-9_]+\b|\b(?:PXT|SUPT)\w+(?:\(\))?"
                   r"|\b[a-z_]+\.h\b)")
OPENING = "(["
CLOSING = ".,:;)]?!"
# What the parser would treat as a macro if it is an argument by itself.
MACROS = set("""Ac Ad An Ao Ap Aq Ar At Bc Bo Bq Bro Brc Brq Bsx Bx Cd Cm Dc Do Dq Dv Dx Ec Ef Em
Eo Er Es Ev Fa Fc Fl Fn Fr Ft Fx Hf Ic In Lb Li Lk Lp Ms Mt Nm No Ns Nx Oc Oo Op Ot Ox Pa Pc Pf Po
Pp Pq Qc Ql Qo Qq Sc Sh So Sq Ss St Sx Sy Ta Tn Ud Ux Va Vt Xc Xo Xr""".split())


def escape(text):
    """Text that roff prints as it is."""
    for character, name in (("\\", "\\e"), ("`", "\\(ga"), ("~", "\\(ti"), ("^", "\\(ha")):
        text = text.replace(character, name)
    return text


def minus(text):
    """A "-" that begins a word or a number is a minus, not a hyphen."""
    return re.sub(r"(?<!\w)-(?=\w)", r"\\-", text)


def argument(text, code=True):
    """One argument of a macro line."""
    text = escape(text).replace('"', "\\(dq")
    if code:
        text = text.replace("'", "\\(aq").replace("-", "\\-")
    else:
        text = minus(text)
    if text in MACROS or all(character in OPENING + CLOSING + "|" for character in text):
        text = "\\&" + text
    elif text[-1] in CLOSING and code:
        text += "\\&"
    return f'"{text}"' if " " in text else text


def macro(name, *texts):
    return " ".join(["." + name, *(argument(text) for text in texts)])


class Writer:
    """Turns descriptions into lines of mdoc, for one page; `links` has each name's page."""

    def __init__(self, page, links, types):
        self.page = page
        self.links = links
        self.types = types
        self.parameters = set()
        self.mentioned = set()

    def markup(self, code):
        """The macro and the arguments for a piece of code in running text."""
        page = self.links.get(code.removesuffix("()"))
        if page == self.page:
            return ["Nm", page]
        if page:
            self.mentioned.add(page)
            return ["Xr", page, "3"]
        if code == "NULL" or re.fullmatch(r"(SM_STATUS|QVX|QVXCS)_[A-Z0-9_]+", code):
            return ["Dv", code]
        if code.lstrip("*&") in self.parameters:
            return ["Fa", code]
        if re.split(r"[ *]", code)[0] in self.types:
            return ["Vt", re.sub(r"(?<=\w)\*", " *", code)]
        return ["Ql", code]

    def pieces(self, element):
        """Yields (is code, text) of a paragraph's running text."""
        yield False, element.text or ""
        for child in element:
            text = "".join(child.itertext())
            if child.tag == "computeroutput":
                yield True, text
            elif child.tag == "ref":
                yield text in self.types, text
            else:
                raise ValueError(f"{child.tag} has no place in running text")
            yield False, child.tail or ""

    def groups(self, element):
        """Splits running text at its blanks; code stays whole and keeps what touches it."""
        groups = [[]]
        for is_code, text in self.pieces(element):
            if is_code:
                groups[-1].append((self.markup(text), text))
                continue
            for part in re.split(r"(\s+)", text):
                if part.isspace():
                    groups.append([])
                for bit in KNOWN.split(part.strip()):
                    if bit:
                        known = KNOWN.fullmatch(bit) or bit.removesuffix("()") in self.links
                        groups[-1].append((self.markup(bit) if known else None, bit))
        return [group for group in groups if group]

    def macro_line(self, group):
        """A word that has code in it, as one macro line."""
        line, opening = [], []
        for index, (markup, text) in enumerate(group):
            glue = ["Ns"] if line else []
            if markup:
                line += [*glue, markup[0], *opening, *(argument(word) for word in markup[1:])]
                opening = []
            elif index == 0 and all(character in OPENING for character in text):
                opening = list(text)  # set by the macro that follows it
            elif line and all(character in CLOSING for character in text):
                line += list(text)
            else:
                line += [*(glue or ["No"]), argument(text, code=False)]
        return "." + " ".join(line)

    def flow(self, element):
        """Running text as lines: one for each sentence, one for each word with code."""
        lines, words = [], []

        def flush():
            if words:
                line = " ".join(words)
                lines.append("\\&" + line if line[0] in ".'" else line)
                words.clear()

        for group in self.groups(element):
            if any(markup for markup, _ in group):
                flush()
                lines.append(self.macro_line(group))
                continue
            word = minus(escape("".join(text for _, text in group)))
            if words and len(" ".join(words)) + len(word) > 77:
                flush()
            words.append(word)
            if re.search(r"[.!?][\")]*$", word):
                flush()
        flush()
        return lines

    def blocks(self, parent, skip=("parameterlist", "simplesect")):
        """Paragraphs, lists and tables, parted by .Pp."""
        lines = []
        for para in parent.findall("para"):
            running = ElementTree.Element("para")
            running.text = para.text
            for child in para:
                if child.tag not in self.BLOCKS:
                    running.append(child)
                    continue
                lines += self.paragraph(running)
                if child.tag not in skip:
                    lines += self.BLOCKS[child.tag](self, child)
                running = ElementTree.Element("para")
                running.text = child.tail
            lines += self.paragraph(running)
        return lines

    def paragraph(self, running):
        text = self.flow(running)
        return [".Pp", *text] if text else []

    def titled(self, section):
        return [".Pp", macro("Em", plain(section.find("title"))) + " :",
                *unparted(self.blocks(section))]

    def bullets(self, element):
        return [".Bl -bullet", *(line for item in element.findall("listitem")
                                 for line in [".It", *unparted(self.blocks(item))]), ".El"]

    def table(self, element):
        rows = [row.findall("entry") for row in element.findall("row")]
        widths = [max((plain(row[column]) for row in rows), key=len) + "mm"
                  for column in range(len(rows[0]) - 1)]
        return [".Bl -column " + " ".join(f'"{escape(width)}"' for width in widths),
                *(".It " + " Ta ".join(self.cell(entry) for entry in row) for row in rows), ".El"]

    def cell(self, entry):
        """A table's cell, a part of one line. Code has no quotes: groff would close them late."""
        if entry.get("thead") == "yes":
            return "Em " + argument(plain(entry), code=False)
        parts, words = [], []
        for group in [*self.groups(entry.find("para")), None]:
            if group is not None and all(markup is None for markup, _ in group):
                words.append("".join(text for _, text in group))
                continue
            if words:
                parts.append(("No " if parts else "") + argument(" ".join(words), code=False))
                words = []
            if group is not None:
                group = [(["Li", *markup[1:]] if markup and markup[0] == "Ql" else markup, text)
                         for markup, text in group]
                parts.append(self.macro_line(group)[1:])
        return " ".join(parts)

    # A parameterlist is never shown: it is skipped.
    BLOCKS = {"itemizedlist": bullets, "table": table, "simplesect": titled, "parameterlist": None,
              "verbatim": lambda self, element: verbatim(element.text)}


def verbatim(text):
    lines = [escape(line) for line in text.strip("\n").split("\n")]
    return [".Bd -literal -offset indent",
            *("\\&" + line if line[:1] in (".", "'") else line for line in lines), ".Ed"]


def unparted(lines):
    """Lines without the break that would begin them."""
    return lines[1:] if lines[:1] == [".Pp"] else lines


def plain(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""
