import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'

const longestShown = 60

/** A text that was typed into the field and never saved, here or before the last sign-out. */
export function DraftOffer({ control }: { control: ControlModel }) {
  const draft = control.draft.value
  const m = messages.value
  if (!draft || draft.text === control.text.value) return null
  const elsewhere = draft.of !== control.draftOf ? visibleText(draft.of, longestShown) : ''
  const beginning = visibleText(draft.text.trim().split(/\r?\n/)[0] ?? '', longestShown)
  return (
    <div class="draft-offer" role="status">
      <Icon name="info" />
      <p>
        {m.draft(new Date(draft.at), elsewhere)} <q dir="auto">{beginning}</q>
      </p>
      {elsewhere === '' && (
        <button type="button" class="button quiet small" onClick={() => control.restoreDraft()}>
          {m.restoreDraft}
        </button>
      )}
      <button type="button" class="button quiet small" onClick={() => control.discardDraft()}>
        {m.discardDraft}
      </button>
    </div>
  )
}
