import { HighlightStyle, syntaxHighlighting } from '@codemirror/language'
import type { Extension } from '@codemirror/state'
import { EditorView } from '@codemirror/view'
import { tags } from '@lezer/highlight'

// The colours are the console's: custom properties reach into the shadow root, and follow light and dark there.
const look = EditorView.theme({
  '&': { height: '100%', color: 'var(--text)', backgroundColor: 'transparent', fontSize: 'var(--source-size)' },
  '&.cm-focused': { outline: 'none' },
  '.cm-scroller': { fontFamily: 'var(--mono)', lineHeight: '1.5', overscrollBehavior: 'contain' },
  '.cm-content': { caretColor: 'var(--text)', padding: '8px 0' },
  '.cm-line': { padding: '0 12px 0 8px' },
  '.cm-gutters': {
    color: 'var(--text-2)',
    backgroundColor: 'var(--surface-2)',
    border: 'none',
    borderInlineEnd: '1px solid var(--border)',
  },
  '.cm-lineNumbers .cm-gutterElement': { minWidth: '36px', padding: '0 8px 0 12px' },
  '.cm-activeLine': { backgroundColor: 'color-mix(in srgb, var(--accent) 7%, transparent)' },
  '.cm-activeLineGutter': { color: 'var(--text)', backgroundColor: 'var(--surface-3)' },
  '.cm-marked-line, .cm-marked-line.cm-activeLine': { backgroundColor: 'var(--danger-soft)' },
  '.cm-marked-number, .cm-marked-number.cm-activeLineGutter': {
    color: 'var(--danger)',
    backgroundColor: 'var(--danger-soft)',
    boxShadow: 'inset 3px 0 var(--danger)',
    fontWeight: '600',
  },
  '.cm-marked': { textDecoration: 'underline wavy var(--danger)', textUnderlineOffset: '3px' },
  '.cm-content ::selection, .cm-content::selection, .cm-line::selection': { backgroundColor: 'var(--source-selection)' },
  '.cm-selectionMatch': { backgroundColor: 'color-mix(in srgb, var(--accent) 16%, transparent)' },
  '.cm-searchMatch': { backgroundColor: 'color-mix(in srgb, var(--warning) 30%, transparent)', borderRadius: '2px' },
  '.cm-searchMatch.cm-searchMatch-selected': {
    backgroundColor: 'color-mix(in srgb, var(--warning) 55%, transparent)',
    outline: '1px solid var(--warning)',
  },
  '&.cm-focused .cm-matchingBracket': { backgroundColor: 'transparent', outline: '1px solid var(--accent)', borderRadius: '2px' },
  '&.cm-focused .cm-nonmatchingBracket': { backgroundColor: 'transparent', color: 'var(--danger)' },
  '.cm-specialChar': { color: 'var(--danger)' },
  '.cm-panels': { color: 'var(--text)', backgroundColor: 'var(--surface-2)' },
  '.cm-panels.cm-panels-top': { borderBottom: '1px solid var(--border)' },
  '.cm-panels.cm-panels-bottom': { borderTop: '1px solid var(--border)' },
  '.cm-panel.cm-search, .cm-panel.cm-gotoLine': { padding: '8px 36px 8px 12px', font: 'var(--t-small) / 1.4 var(--sans)' },
  '.cm-panel.cm-search label': { fontSize: 'inherit', margin: '0 8px 0 0', whiteSpace: 'nowrap' },
  '.cm-textfield': {
    minHeight: '28px',
    padding: '2px 8px',
    border: '1px solid var(--border-strong)',
    borderRadius: '6px',
    color: 'inherit',
    backgroundColor: 'var(--surface)',
    fontSize: 'var(--source-size)',
  },
  '.cm-button': {
    minHeight: '28px',
    padding: '2px 10px',
    border: '1px solid var(--border-strong)',
    borderRadius: '6px',
    color: 'inherit',
    background: 'var(--surface)',
    backgroundImage: 'none',
    fontSize: 'inherit',
    cursor: 'pointer',
  },
  '.cm-button:hover, .cm-button:active': { borderColor: 'var(--accent)', background: 'var(--accent-soft)', backgroundImage: 'none' },
  '.cm-textfield:focus-visible, .cm-button:focus-visible, .cm-panel button:focus-visible': {
    outline: '2px solid var(--accent)',
    outlineOffset: '-1px',
  },
  '.cm-panel.cm-search [name=close], .cm-panel.cm-gotoLine [name=close]': {
    inset: '6px 6px auto auto',
    width: '28px',
    height: '28px',
    borderRadius: '6px',
    color: 'var(--text-2)',
    fontSize: '20px',
    cursor: 'pointer',
  },
})

const colours = HighlightStyle.define([
  { tag: [tags.keyword, tags.operatorKeyword], color: 'var(--code-keyword)' },
  { tag: tags.string, color: 'var(--code-string)' },
  { tag: tags.comment, color: 'var(--code-comment)', fontStyle: 'italic' },
  { tag: [tags.number, tags.atom, tags.bool], color: 'var(--code-number)' },
  { tag: tags.standard(tags.variableName), color: 'var(--code-builtin)' },
])

export const theme: Extension = [look, syntaxHighlighting(colours)]
