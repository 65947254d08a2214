// "Is it listed anywhere, why is it refused, let it through": asked by mouse and by keyboard, and from an address that was kept.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

test('a black-listed domain is found, let through, and found again', async () => {
  console.sql("INSERT INTO blacklist (entry) VALUES ('refused.example'); UPDATE konf SET value='1' WHERE ID='checkbw'")
  await openPage(page, 'Look up', 'lookup')
  await page.getByRole('textbox', { name: 'Look up' }).fill('refused.example')
  await page.keyboard.press('Enter')
  await page.getByText('Rejected: "refused.example" is on the domain black list.').waitFor()
  await picture(page, 'lookup')
  assert.match(page.url(), /#\/lookup\/refused\.example$/)

  await page.getByRole('combobox', { name: 'List' }).fill('domains.white')
  await page.getByRole('textbox', { name: 'Comment' }).fill("a customer's")
  await page.getByRole('button', { name: 'Add to list' }).click()
  await page.getByText(/^Allowed: "refused\.example" is on the domain white list \(a customer's\)\./).waitFor()
  await console.becomes("select count(*) from blacklist where entry='refused.example'", '0')
  assert.equal(console.run('registry', 'get', 'HKLM\\SOFTWARE\\Mirvan\\reloadwhite').trim(), '1')
})

test('an address that was kept opens what it was about, and writes nothing', async () => {
  const before = console.run('do', '--json', 'domainbw')
  await page.goto(page.url().replace(/#.*/, '#/lookup/198.51.100.7'))
  await page.getByText(/198\.51\.100\.7/).first().waitFor()
  assert.equal(await page.getByRole('textbox', { name: 'Look up' }).inputValue(), '198.51.100.7')
  assert.equal(JSON.stringify(JSON.parse(console.run('do', '--json', 'domainbw')).controls), JSON.stringify(JSON.parse(before).controls))
  await page.goBack()
  await page.getByText(/^Allowed: "refused\.example"/).waitFor()
})
