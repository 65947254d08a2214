import { messages } from '../i18n'
import { addressOf } from '../model/files'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { session, toasts } from '../state/app-state'
import type { OfferedFile } from '../wire/protocol'

const longestName = 100

/** The link that fetches a file. */
export function DownloadLink({ file, onFetch, short }: { file: OfferedFile; onFetch?: () => void; short?: boolean }) {
  const m = messages.value
  const name = m.download(visibleText(file.name, longestName))
  return (
    <a
      class="button small"
      href={addressOf(file)}
      download={file.name}
      aria-label={short ? name : undefined}
      onClick={() => {
        session.files.fetched(file.token)
        onFetch?.()
      }}
    >
      <Icon name="download" />
      <span>{short ? m.downloadShort : name}</span>
    </a>
  )
}

/** The files that wait for being fetched, in the drawer. */
export function OfferedFiles() {
  const m = messages.value
  const files = session.files.offered.value
  if (files.length === 0) return null
  return (
    <section class="offered" aria-label={m.files}>
      <h3>{m.files}</h3>
      <ul>
        {files.map(file => (
          <li key={file.token}>
            <div class="offered-text">
              <bdi title={visibleText(file.name, longestName)}>{visibleText(file.name, longestName)}</bdi>
              <small>
                {m.size(file.size)}
                {file.fetched && ` · ${m.fileFetched}`}
              </small>
            </div>
            <DownloadLink file={file} short />
            <button
              type="button"
              class="icon-button small"
              aria-label={m.dismiss}
              onClick={() => {
                session.files.dismiss(file.token)
                toasts.dropFile(file.token)
              }}
            >
              <Icon name="close" />
            </button>
          </li>
        ))}
      </ul>
    </section>
  )
}
