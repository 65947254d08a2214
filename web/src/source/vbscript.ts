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
  const line = doc.lineAt(place)
  let before = line.number - 1
  while (before > 0 && doc.line(before).text.trim() === '') --before
  if (before === 0) return 0
  const above = doc.line(before)
  let columns = context.lineIndent(above.from)
  if (opening.test(above.text)) columns += context.unit
  // The line may be about to be broken at the place: what comes behind it begins the new one.
  if (closing.test(context.textAfterPos(place))) columns -= context.unit
  return Math.max(0, columns)
})

export function vbscript(): Extension {
  const language = StreamLanguage.define({
    ...vbScript,
    languageData: { commentTokens: { line: "'" }, indentOnInput: closesWhenTyped },
  })
  return [language, indentation]
}
