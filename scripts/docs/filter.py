#!/usr/bin/env python3
"""Doxygen's input filter: the headers' plain comments in doxygen's words.

A comment at the left margin documents every declaration up to the next empty line. In it, "name: text; other: text."
documents parameters; a parameter without such an entry is documented by the sentence that names it, or by the same
entry at the head of the section ("/* ---- ... */") or of the header. The sentences that name result codes, or say
what is returned, document the result.
"""
import re
import sys

COMMENT = re.compile(r"^/\*(?!\*)(.*?)\*/", re.S | re.M)
DECLARATION = re.compile(r"^(?:ZE_KEST_API|typedef|enum|struct|extern|#define)\s", re.M)
NO_FUNCTION = ("#", "enum", "typedef struct", "struct", "extern ZE")
TELLS_RESULT = re.compile(r"\b(Returns?|returns?|result|ZE_KEST_[A-Z]+|NULL|Whether|1 when|Length)\b")


def text_of(comment):
    return re.sub(r"\n \* ?", "\n", comment).strip()


def sentences(text):
    flat = " ".join(text.split())
    return re.split(r"(?<=[.:]) (?=[A-Z_*])", flat)


def parameter_entry(name, text):
    flat = " ".join(text.split())
    names = r"(?:\w+, )*\*?" + re.escape(name) + r"(?:, \w+)*"
    next_entry = r"; (?:\w+, )*\w+(?: \([^)]*\))?: "
    entry = re.search(r"(?:^|[.;:,] )" + names + r"(?: \([^)]*\))?: (.*?)(?=" + next_entry + r"|\. |\.$|$)", flat)
    if entry:
        return entry.group(1)
    for sentence in sentences(text):
        if re.search(r"(?<!\w)" + re.escape(name) + r"(?!\w)", sentence):
            return sentence
    return None


def parameters(declaration):
    start = declaration.rfind("(", 0, declaration.find(")") if "(*" not in declaration else len(declaration))
    inner = declaration[start + 1:declaration.rfind(")")]
    inner = inner.split(")")[0]
    return [re.search(r"(\w+)\s*(?:\[\w*\])?$", p.strip()).group(1) for p in inner.split(",")
            if p.strip() not in ("void", "...", "")]


def result_text(declaration, text, result_codes):
    head = declaration.split("(")[0]
    if re.search(r"\bvoid\s+$|\bvoid\s+ze_", head) and "*" not in head:
        return None
    told = [sentence for sentence in sentences(text) if TELLS_RESULT.search(sentence)]
    if told:
        return " ".join(told)
    return "A result code." if "uint32_t" in head and result_codes else None


def function_words(declaration, text, shared, result_codes):
    words = []
    for name in parameters(declaration):
        entry = next((e for e in (parameter_entry(name, t) for t in [text, *shared]) if e), None)
        if entry:
            words.append(f"@param {name} {entry}")
    result = result_text(declaration, text, result_codes)
    if result:
        words.append(f"@return {result}")
    return words


def convert(source):
    head = text_of(COMMENT.search(source).group(1))
    result_codes = re.search(r"function( that stores something)? returns a result code", " ".join(head.split()))
    out, section = [], ""
    for block in re.split(r"(\n\n)", source):
        if block.startswith("/* SPDX"):
            comment = COMMENT.search(block)
            out.append("/** @file\n" + comment.group(1).split("\n", 1)[1] + "*/" + block[comment.end():])
            continue
        comment = COMMENT.match(block)
        if comment and comment.group(1).lstrip().startswith("----"):
            section = text_of(comment.group(1))
        out.append(documented(block, [section, head], result_codes))
    inside = re.sub(r"^( +)/\* ", r"\1/** ", "".join(out), flags=re.M)
    return re.sub(r"([;,{]|\w)( +)/\* ", r"\1\2/**< ", inside)


def documented(block, shared, result_codes):
    """A block without empty lines: comments, each with the declarations that follow it."""
    parts = []
    comments = list(COMMENT.finditer(block))
    if not comments:
        return block
    parts.append(block[:comments[0].start()])
    for i, comment in enumerate(comments):
        end = comments[i + 1].start() if i + 1 < len(comments) else len(block)
        body = block[comment.end():end]
        text = text_of(comment.group(1))
        if text.startswith("----") and not DECLARATION.search(body):
            parts.append(block[comment.start():end])
            continue
        for declaration in split_declarations(body):
            words = []
            if "(" in declaration and not declaration.lstrip().startswith(NO_FUNCTION):
                words = function_words(declaration, text, shared, result_codes)
            described = text.replace("@", "\\@").replace("<", "\\<")
            parts.append("/** " + "\n".join([described, "", *words]) + " */" + "\n" + declaration.lstrip("\n"))
    return "".join(parts)


def split_declarations(body):
    if "{" in body:
        return [body]
    found = re.findall(r"(?:[^;#]+;|#[^\n]*)[^\n]*\n?", body)
    return found or [body]


with open(sys.argv[1], encoding="utf-8") as header:
    sys.stdout.write(convert(header.read()))
