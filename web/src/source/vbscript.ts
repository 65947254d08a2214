import { indentService, StreamLanguage } from '@codemirror/language'
import { vbScript } from '@codemirror/legacy-modes/mode/vbscript'
import type { Extension } from '@codemirror/state'

const opening =
  /^\s*(?:(?:public|private)\s+(?:default\s+)?)?(?:function|sub|property|class|for|do|while|with|select\s+case|case|else|elseif)\b|\bthen\s*(?:'.*)?$/i
const closing = /^\s*(?:end\s+(?:if|function|sub|property|class|select|with)|next|loop|wend|else|elseif|case)\b/i
const closesWhenTyped = /^\s*(?:end\s+(?:if|function|sub|property|class|select|with)|next|loop|wend|else|elseif|case)$/i

/** As the line before, one step further in a block, one step back where the block ends. */
const indentation = indentService.of((context, place) => {
  const { doc } = context.state
  const { from } = context.lineAt(place)
  // The line may be about to be broken here: what stands before the place is the line above then.
  let above = context.lineAt(place, -1)
  while (above.text.trim() === '' || above.from === from) {
    if (above.from === 0) return 0
    above = doc.lineAt(above.from - 1)
  }
  let columns = context.countColumn(above.text, above.text.search(/\S/))
  if (opening.test(above.text)) columns += context.unit
  if (closing.test(context.textAfterPos(place))) columns -= context.unit
  return Math.max(0, columns)
})

/** Words of the language that the mode takes for names. */
const furtherKeywords = /^(?:to|step|each|preserve|default|erase)$/i

export function vbscript(): Extension {
  const language = StreamLanguage.define({
    ...vbScript,
    token: (stream, state) => {
      const style = vbScript.token(stream, state)
      return style === 'variable' && furtherKeywords.test(stream.current()) ? 'keyword' : style
    },
    languageData: { commentTokens: { line: "'" }, indentOnInput: closesWhenTyped },
  })
  return [language, indentation]
}
