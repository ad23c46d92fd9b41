#pragma once
// Puts the module's forms into the user's language. The forms live in the host's form repository and carry
// their texts in English; the module translates every text under its one generic context, so it names the
// forms' texts here for the translation tools and swaps each text of a loaded form for its translation.

class QWidget;

class CFormTexts
{
public:
    // Translates the texts, placeholders, tool tips, window titles and accessible names of `form` and of
    // every widget below it. Texts without a translation stay as they are.
    static void translate(QWidget* form);
};
