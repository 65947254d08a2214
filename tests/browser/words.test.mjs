// What people are told: the sentences of acts, hints while they type, and what the search finds.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openNamed, openPage, picture, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

const group = name => page.getByRole('group', { name, exact: true })
const notices = () => page.getByRole('region', { name: 'Notices' })
const field = label => page.getByRole('main').getByLabel(label, { exact: true })
const hintOf = id => page.locator(`[id="${id}-hint"]`)

test('an act says one sentence, red only if it failed, and the showing of a page says none', async () => {
  await openPage(page, 'Domains', 'domainbw')
  await page.waitForTimeout(300)
  assert.equal(await notices().locator('.toast').count(), 0)
  await field('Domain').fill('royalcasino.example')
  await group('Black list').getByRole('button', { name: 'Add' }).click()
  const added = notices().locator('.toast', { hasText: 'royalcasino.example added to the domain black list' })
  await added.waitFor()
  assert.equal(await notices().locator('.toast').count(), 1)
  assert.equal(await added.evaluate(toast => toast.classList.contains('failed') || toast.classList.contains('neutral')), false)
  await picture(page, 'said')

  await openPage(page, 'E-mail addresses', 'wbuser')
  await field('E-mail address').fill('nobody')
  await group('Black list').getByRole('button', { name: 'Add' }).click()
  await notices().locator('.toast.neutral', { hasText: 'Nothing stored: an address needs an at sign' }).waitFor()
  assert.equal(await notices().locator('.toast.failed').count(), 0)

  await openPage(page, 'Domains', 'domainbw')
  console.sql("CREATE TRIGGER kept BEFORE INSERT ON whitelist BEGIN SELECT raise(ABORT, 'kept out'); END")
  await field('Domain').fill('ham.example')
  await group('White list').getByRole('button', { name: 'Add' }).click()
  await notices().locator('.toast.failed', { hasText: 'ham.example not added to the domain white list: kept out' }).waitFor()
  console.sql('DROP TRIGGER kept')
  await page.getByRole('button', { name: /^Activity/ }).click()
  await page.getByRole('listbox', { name: 'Activity' }).getByText('INSERT INTO whitelist').first().waitFor()
  await page.keyboard.press('Escape')
})

test('a field hints at what does not fit, moves nothing, and keeps what was typed', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const domain = field('Domain')
  const below = group('White list')
  const before = await below.boundingBox()
  const hint = hintOf('c-domainbw-Text1')
  const hinted = async (text, told) => {
    await domain.fill(text)
    await hint.getByText(told).waitFor()
  }
  await hinted('https://spam.example/x', 'This is a web address')
  assert.deepEqual(await below.boundingBox(), before)
  assert.match(await domain.getAttribute('aria-describedby'), /^c-domainbw-Text1-hint/)
  await picture(page, 'hint')
  await hinted('spam .example', 'There is a blank')
  await hinted('192.0.2.1', 'This is an IP number')
  // More letters may mend it.
  await domain.fill('spam')
  await page.waitForFunction(() => document.getElementById('c-domainbw-Text1-hint').textContent === '')
  await page.waitForTimeout(400)
  assert.equal(await hint.textContent(), '')
  await domain.blur()
  await hint.getByText('A domain has a dot').waitFor()
  await domain.fill('spam.example')
  await page.waitForFunction(() => document.getElementById('c-domainbw-Text1-hint').textContent === '')

  for (const [name, id, text, told] of [
    ['keywords', 'Text1', 'REGEX[a(b]', 'The regular expression is broken'],
    ['strings', 'hello', 'hello there', 'Each line begins with the code'],
    ['ServiceControl', 'Text2', '99999', 'A whole number from 1 to 65535'],
  ]) {
    await openNamed(page, name)
    await page.locator(`[id="c-${name}-${id}"]`).fill(text)
    await hintOf(`c-${name}-${id}`).getByText(told).waitFor()
    assert.equal(await page.locator(`[id="c-${name}-${id}"]`).inputValue(), text)
    await picture(page, `hint-${name}`)
  }
})

test('a button that would refuse the text explains instead, and the text stays', async () => {
  await openPage(page, 'IP numbers', 'ipbw')
  const address = field('IP number')
  await address.fill('192.0.2.300')
  await group('Black list').getByRole('button', { name: 'Add' }).click()
  const alert = page.getByRole('alert').getByText('Four numbers from 0 to 255')
  await alert.waitFor()
  assert.equal(await address.inputValue(), '192.0.2.300')
  await page.waitForFunction(() => document.activeElement?.id === 'c-ipbw-ip')
  assert.equal(console.sql("select count(*) from Blackhost where IPNumber like '192.0.2.300%'"), '0')
  await address.fill('192.0.2.30')
  await alert.waitFor({ state: 'detached' })
  await group('Black list').getByRole('button', { name: 'Add' }).click()
  await notices().getByText('192.0.2.30 added to the IP black list').waitFor()
})

test('the search finds an entry and opens its list with the entry chosen, by keyboard alone', async () => {
  console.sql("INSERT INTO blacklist (entry) VALUES ('mail.qqneedle.example')")
  await openPage(page, 'General', 'general')
  await page.keyboard.press('Control+k')
  await page.keyboard.type('QQneedle')
  const hit = page.getByRole('option', { name: /mail\.qqneedle\.example/ })
  await hit.waitFor()
  assert.match(await hit.textContent(), /Domains › Black list/)
  await picture(page, 'search-entry')
  await page.keyboard.press('Enter')
  await page.waitForFunction(() => document.getElementById('c-domainbw-Text1')?.value === 'mail.qqneedle.example')
  const row = group('Black list').locator('.list-row[aria-selected="true"]')
  await row.getByText('mail.qqneedle.example').waitFor()
  assert.ok(
    await row.evaluate(element => {
      const view = element.closest('.list-rows').getBoundingClientRect()
      const box = element.getBoundingClientRect()
      return box.top >= view.top - 1 && box.bottom <= view.bottom + 1
    }),
  )
  // Also one that a filter hides, on the page that is open.
  await group('Black list').getByRole('textbox', { name: /^Filter/ }).fill('casino')
  await group('Black list').getByText(/^[\d,]+ of 17,/).waitFor()
  console.sql("INSERT INTO whitelist (entry) VALUES ('qqneedle.example')")
  await page.keyboard.press('Control+k')
  await page.keyboard.type('mail.qqneedle')
  await hit.waitFor()
  await page.keyboard.press('Enter')
  await row.getByText('mail.qqneedle.example').waitFor()
})

test('the search hands what stands on no list to the page that looks things up', async () => {
  await page.keyboard.press('Control+k')
  await page.keyboard.type('bob@nowhere.example')
  await page.getByRole('option', { name: /Look up “bob@nowhere\.example”/ }).waitFor()
  await page.keyboard.press('Enter')
  await page.getByText('Not listed: no entry of any list touches "bob@nowhere.example".').waitFor()
  assert.match(page.url(), /#\/lookup\/bob%40nowhere\.example$/)
})

test('the search knows other words, tells hits apart, and runs commands', async () => {
  await page.keyboard.press('Control+k')
  await page.keyboard.type('whitelist import')
  await page.getByRole('option', { name: /White list/ }).first().waitFor()
  await picture(page, 'search-words')
  await page.keyboard.press('Control+a')
  await page.keyboard.type('dark')
  await page.getByRole('option', { name: /Appearance: Dark/ }).waitFor()
  await page.keyboard.press('Enter')
  await page.waitForFunction(() => document.documentElement.dataset.theme === 'dark')
  await page.keyboard.press('Control+k')
  await page.keyboard.type('change password')
  await page.getByRole('option', { name: /Change password/ }).first().waitFor()
  await page.keyboard.press('Enter')
  await page.getByRole('dialog', { name: 'Change password' }).waitFor()
  await page.keyboard.press('Escape')
  await page.keyboard.press('Control+k')
  await page.keyboard.type('deutsch')
  await page.getByRole('option', { name: /German/ }).first().waitFor()
  await page.keyboard.press('Enter')
  await page.getByRole('navigation').getByText('Domänen', { exact: true }).first().waitFor({ state: 'attached' })
})

test('sentences and hints are in German, too', async () => {
  await openNamed(page, 'domainbw')
  await page.locator('[id="c-domainbw-Text1"]').fill('neu.example')
  await page.locator('[id="c-domainbw-Command3"]').click()
  await page.getByRole('region', { name: 'Meldungen' }).getByText('neu.example zur schwarzen Liste der Domänen hinzugefügt').waitFor()
  await page.locator('[id="c-domainbw-Text1"]').fill('http://neu.example')
  await hintOf('c-domainbw-Text1').getByText('Das ist eine Webadresse').waitFor()
  await picture(page, 'said-german')
  await page.keyboard.press('Control+k')
  await page.keyboard.type('Sperrliste')
  await page.getByRole('option', { name: /Schwarze/ }).first().waitFor()
  await picture(page, 'search-german')
})
